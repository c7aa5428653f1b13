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
    void aboutToShowNeedsNoUpdate();

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
    QCOMPARE(m_exporter->addItem(QStringLiteral("Alpha")), 1);
    QCOMPARE(m_exporter->addItem(QStringLiteral("Beta_1")), 2);
    QCOMPARE(m_exporter->addItem(QStringLiteral("Gamma\u2026")), 3);
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
                                         QStringLiteral("Gamma\u2026")}));
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
    QTest::addColumn<bool>("emits");
    QTest::newRow("click on an item") << "Event" << 2 << "clicked" << true;
    QTest::newRow("hover") << "Event" << 1 << "hovered" << false;
    // A click on the root opens the menu; it is no item of ours.
    QTest::newRow("click on the root") << "Event" << 0 << "clicked" << false;
    QTest::newRow("group: a click and an unknown id") << "EventGroup" << 2 << "clicked" << true;
}

void TestDBusMenuExporter::events()
{
    QFETCH(QString, method);
    QFETCH(int, id);
    QFETCH(QString, eventId);
    QFETCH(bool, emits);

    QSignalSpy clicked(m_exporter.get(), &DBusMenuExporter::itemClicked);
    const QDBusMessage reply =
        method == QLatin1String("Event")
            ? callMenu(method, {id, eventId, QVariant::fromValue(QDBusVariant(QString())), 42u})
            : callMenu(method, {hostEvents({{id, eventId}, {99, eventId}})});
    QVERIFY2(reply.type() == QDBusMessage::ReplyMessage, qPrintable(reply.errorMessage()));
    if (method == QLatin1String("EventGroup")) // Unknown ids are reported back.
        QCOMPARE(qdbus_cast<QList<int>>(reply.arguments().at(0)), QList<int>({99}));
    QCOMPARE(clicked.size(), emits ? 1 : 0);
    if (emits)
        QCOMPARE(clicked.at(0).at(0).toInt(), id);
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

void TestDBusMenuExporter::aboutToShowNeedsNoUpdate()
{
    const QDBusMessage single = callMenu(QStringLiteral("AboutToShow"), {0});
    QCOMPARE(single.signature(), QStringLiteral("b"));
    QCOMPARE(single.arguments().at(0).toBool(), false);

    const QDBusMessage group =
        callMenu(QStringLiteral("AboutToShowGroup"), {QVariant::fromValue(QList<int>{0, 2, 77})});
    QCOMPARE(group.signature(), QStringLiteral("aiai"));
    QCOMPARE(qdbus_cast<QList<int>>(group.arguments().at(0)), QList<int>());
    QCOMPARE(qdbus_cast<QList<int>>(group.arguments().at(1)), QList<int>({77}));
}

QTEST_GUILESS_MAIN(TestDBusMenuExporter)
#include "tst_dbusmenuexporter.moc"
