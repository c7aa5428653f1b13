#include "DBusMenuExporter.h"
#include "TestBus.h"

#include <QDBusMetaType>
#include <QSignalSpy>

#include <memory>

namespace {

const QString menuPath = QStringLiteral("/TestMenu");
const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");

// One EventGroup entry, (isvu), marshalled here as a host would send it.
struct HostEvent
{
    int id = 0;
    QString eventId;
};

QDBusArgument &operator<<(QDBusArgument &argument, const HostEvent &event)
{
    argument.beginStructure();
    argument << event.id << event.eventId << QDBusVariant(QString()) << 7u;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, HostEvent &event)
{
    QDBusVariant data;
    uint timestamp = 0;
    argument.beginStructure();
    argument >> event.id >> event.eventId >> data >> timestamp;
    argument.endStructure();
    return argument;
}

QVariant hostEvents(const QList<HostEvent> &events)
{
    return QVariant::fromValue(events);
}

} // namespace

Q_DECLARE_METATYPE(HostEvent)

class SignalLog final : public QObject
{
    Q_OBJECT

public:
    QStringList seen;

public Q_SLOTS:
    void record(const QDBusMessage &message) { seen.append(message.member()); }
};

class TestDBusMenuExporter final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { m_exporter.reset(); }

    void layout();
    void events_data();
    void events();
    void unknownIdIsAnError_data();
    void unknownIdIsAnError();
    void itemsKeepTheirIds();
    void aboutToShowRefreshes_data();
    void aboutToShowRefreshes();

private:
    QDBusMessage callMenu(const QString &method, const QVariantList &arguments)
    {
        return TestBus::call(m_client, QDBusConnection::sessionBus().baseService(), menuPath,
                             menuInterface, method, arguments);
    }

    QDBusConnection m_client{QString()};
    std::unique_ptr<DBusMenuExporter> m_exporter;
};

void TestDBusMenuExporter::initTestCase()
{
    QVERIFY2(QDBusConnection::sessionBus().isConnected(), "needs a session bus");
    m_client = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("client"));
    QVERIFY(m_client.isConnected());
    qDBusRegisterMetaType<HostEvent>();
    qDBusRegisterMetaType<QList<HostEvent>>();
}

void TestDBusMenuExporter::init()
{
    m_exporter = std::make_unique<DBusMenuExporter>(QDBusConnection::sessionBus(), menuPath);
    QVERIFY(m_exporter->isExported());
    m_exporter->setItems({{QStringLiteral("a"), QStringLiteral("Alpha")},
                          {QStringLiteral("b"), QStringLiteral("Beta_1")},
                          {QStringLiteral("-"), QString(), true},
                          {QStringLiteral("c"), QStringLiteral("Gamma\u2026")}});
    QCOMPARE(m_exporter->idOf(QStringLiteral("c")), 4);
}

void TestDBusMenuExporter::layout()
{
    const QDBusMessage reply = callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()});
    QCOMPARE(reply.signature(), QStringLiteral("u(ia{sv}av)"));
    QCOMPARE(reply.arguments().at(0).toUInt(), m_exporter->revision());
    const TestBus::MenuNode root = TestBus::menuNode(reply.arguments().at(1));
    QCOMPARE(root.id, 0);
    QCOMPARE(root.properties.value(QStringLiteral("children-display")).toString(),
             QStringLiteral("submenu"));
    // A literal underscore is doubled so that it is not read as a mnemonic.
    QCOMPARE(root.labels(), QStringList({QStringLiteral("Alpha"), QStringLiteral("Beta__1"),
                                         QString(), QStringLiteral("Gamma\u2026")}));
    QCOMPARE(root.children.at(2).properties.value(QStringLiteral("type")).toString(),
             QStringLiteral("separator"));
    // Hosts refuse menus of older versions.
    QCOMPARE(TestBus::property(m_client, QDBusConnection::sessionBus().baseService(), menuPath,
                               menuInterface, QStringLiteral("Version")),
             QVariant(3u));
}

void TestDBusMenuExporter::events_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("eventId");
    QTest::addColumn<QString>("emits"); // the key clicked, if any
    QTest::addColumn<bool>("open");
    QTest::newRow("click on an item") << "Event" << 2 << "clicked"
                                      << "b" << false;
    QTest::newRow("hover") << "Event" << 1 << "hovered"
                           << "" << false;
    QTest::newRow("click on a separator") << "Event" << 3 << "clicked"
                                          << "" << false;
    // A click on the root opens the menu; it is no item of ours.
    QTest::newRow("click on the root") << "Event" << 0 << "clicked"
                                       << "" << false;
    QTest::newRow("menu opened") << "Event" << 0 << "opened"
                                 << "" << true;
    QTest::newRow("group: a click and an unknown id") << "EventGroup" << 2 << "clicked"
                                                      << "b" << false;
}

void TestDBusMenuExporter::events()
{
    QFETCH(QString, method);
    QFETCH(int, id);
    QFETCH(QString, eventId);
    QFETCH(QString, emits);
    QFETCH(bool, open);

    QSignalSpy clicked(m_exporter.get(), &DBusMenuExporter::itemClicked);
    const QDBusMessage reply =
        method == QLatin1String("Event")
            ? callMenu(method, {id, eventId, QVariant::fromValue(QDBusVariant(QString())), 42u})
            : callMenu(method, {hostEvents({{id, eventId}, {99, eventId}})});
    QVERIFY2(reply.type() == QDBusMessage::ReplyMessage, qPrintable(reply.errorMessage()));
    if (method == QLatin1String("EventGroup")) // Unknown ids are reported back.
        QCOMPARE(qdbus_cast<QList<int>>(reply.arguments().at(0)), QList<int>({99}));
    QCOMPARE(clicked.size(), emits.isEmpty() ? 0 : 1);
    if (!emits.isEmpty())
        QCOMPARE(clicked.at(0).at(0).toString(), emits);
    QCOMPARE(m_exporter->isOpen(), open);
    if (open) {
        callMenu(method, {id, QStringLiteral("closed"), QVariant::fromValue(QDBusVariant(0)), 1u});
        QVERIFY(!m_exporter->isOpen());
    }
}

void TestDBusMenuExporter::unknownIdIsAnError_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    const QVariant noData = QVariant::fromValue(QDBusVariant(0));
    QTest::newRow("GetLayout") << "GetLayout" << QVariantList{99, -1, QStringList()};
    QTest::newRow("GetProperty") << "GetProperty" << QVariantList{99, QStringLiteral("label")};
    QTest::newRow("Event") << "Event" << QVariantList{99, QStringLiteral("clicked"), noData, 0u};
    QTest::newRow("AboutToShowGroup, none known")
        << "AboutToShowGroup" << QVariantList{QVariant::fromValue(QList<int>{77, 78})};
    QTest::newRow("EventGroup, none known")
        << "EventGroup" << QVariantList{hostEvents({{98, QStringLiteral("clicked")}})};
}

void TestDBusMenuExporter::unknownIdIsAnError()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);

    QSignalSpy clicked(m_exporter.get(), &DBusMenuExporter::itemClicked);
    QCOMPARE(callMenu(method, arguments).errorName(),
             QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"));
    QCOMPARE(clicked.size(), 0);
}

void TestDBusMenuExporter::itemsKeepTheirIds()
{
    // What a host hears of the changes.
    SignalLog log;
    for (const QString &member :
         {QStringLiteral("LayoutUpdated"), QStringLiteral("ItemsPropertiesUpdated")}) {
        QVERIFY(m_client.connect(QDBusConnection::sessionBus().baseService(), menuPath,
                                 menuInterface, member, &log, SLOT(record(QDBusMessage))));
    }
    const uint revision = m_exporter->revision();
    // New labels only: the layout stands, the labels go out as updates.
    m_exporter->setItems({{QStringLiteral("a"), QStringLiteral("Alpha 2")},
                          {QStringLiteral("b"), QStringLiteral("Beta_1")},
                          {QStringLiteral("-"), QString(), true},
                          {QStringLiteral("c"), QStringLiteral("Gamma\u2026")}});
    QCOMPARE(m_exporter->revision(), revision);
    QCOMPARE(callMenu(QStringLiteral("GetProperty"), {1, QStringLiteral("label")})
                 .arguments()
                 .at(0)
                 .value<QDBusVariant>()
                 .variant()
                 .toString(),
             QStringLiteral("Alpha 2"));
    QTRY_COMPARE(log.seen, QStringList{QStringLiteral("ItemsPropertiesUpdated")});

    // A new item and a new order: a new layout, and every kept key its old id.
    m_exporter->setItems({{QStringLiteral("c"), QStringLiteral("Gamma")},
                          {QStringLiteral("d"), QStringLiteral("Delta")},
                          {QStringLiteral("a"), QStringLiteral("Alpha")}});
    QCOMPARE(m_exporter->revision(), revision + 1);
    QCOMPARE(m_exporter->idOf(QStringLiteral("c")), 4);
    QCOMPARE(m_exporter->idOf(QStringLiteral("a")), 1);
    QCOMPARE(m_exporter->idOf(QStringLiteral("d")), 5);
    QCOMPARE(m_exporter->idOf(QStringLiteral("b")), std::nullopt);
    QCOMPARE(callMenu(QStringLiteral("GetProperty"), {2, QStringLiteral("label")}).errorName(),
             QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"));
    QTRY_COMPARE(log.seen, (QStringList{QStringLiteral("ItemsPropertiesUpdated"),
                                        QStringLiteral("LayoutUpdated")}));
}

void TestDBusMenuExporter::aboutToShowRefreshes_data()
{
    QTest::addColumn<QString>("newLabel"); // given to "a" on opening; empty: no change
    QTest::addColumn<bool>("addsItem");
    QTest::addColumn<bool>("needsUpdate");
    QTest::newRow("nothing changed") << "" << false << false;
    QTest::newRow("a label changed") << "Alpha 2" << false << true;
    QTest::newRow("an item added") << "" << true << true;
}

void TestDBusMenuExporter::aboutToShowRefreshes()
{
    QFETCH(QString, newLabel);
    QFETCH(bool, addsItem);
    QFETCH(bool, needsUpdate);

    connect(m_exporter.get(), &DBusMenuExporter::aboutToShow, this, [&] {
        QList<DBusMenuExporter::Entry> entries{
            {QStringLiteral("a"), newLabel.isEmpty() ? QStringLiteral("Alpha") : newLabel},
            {QStringLiteral("b"), QStringLiteral("Beta_1")},
            {QStringLiteral("-"), QString(), true},
            {QStringLiteral("c"), QStringLiteral("Gamma\u2026")}};
        if (addsItem)
            entries.append({QStringLiteral("d"), QStringLiteral("Delta")});
        m_exporter->setItems(entries);
    });
    const QDBusMessage single = callMenu(QStringLiteral("AboutToShow"), {0});
    QCOMPARE(single.signature(), QStringLiteral("b"));
    QCOMPARE(single.arguments().at(0).toBool(), needsUpdate);

    // Only the root's opening asks for fresh items.
    const QDBusMessage group =
        callMenu(QStringLiteral("AboutToShowGroup"), {QVariant::fromValue(QList<int>{0, 2, 77})});
    QCOMPARE(group.signature(), QStringLiteral("aiai"));
    QCOMPARE(qdbus_cast<QList<int>>(group.arguments().at(0)), QList<int>());
    QCOMPARE(qdbus_cast<QList<int>>(group.arguments().at(1)), QList<int>({77}));
}

QTEST_GUILESS_MAIN(TestDBusMenuExporter)
#include "tst_dbusmenuexporter.moc"
