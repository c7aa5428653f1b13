#include "DBusMenuExporter.h"
#include "TestBus.h"
#include "WireDecode.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QSignalSpy>
#include <QTest>

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

} // namespace

Q_DECLARE_METATYPE(HostEvent)

class TestDBusMenuExporter final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void layoutListsItemsInOrder();
    void layoutDepthAndNames_data();
    void layoutDepthAndNames();
    void unknownIdIsAnError_data();
    void unknownIdIsAnError();
    void events_data();
    void events();
    void eventGroupReportsUnknownIds();
    void aboutToShowNeedsNoUpdate();
    void interfaceProperties_data();
    void interfaceProperties();

private:
    QDBusMessage callMenu(const QString &method, const QVariantList &arguments);

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

void TestDBusMenuExporter::cleanup()
{
    m_exporter.reset();
}

QDBusMessage TestDBusMenuExporter::callMenu(const QString &method, const QVariantList &arguments)
{
    return TestBus::call(m_client, QDBusConnection::sessionBus().baseService(), menuPath,
                         menuInterface, method, arguments);
}

void TestDBusMenuExporter::layoutListsItemsInOrder()
{
    const QDBusMessage reply = callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()});
    QCOMPARE(reply.signature(), QStringLiteral("u(ia{sv}av)"));
    QCOMPARE(reply.arguments().at(0).toUInt(), m_exporter->revision());

    bool ok = false;
    const WireDecode::MenuNode root = WireDecode::menuLayout(reply.arguments().at(1), &ok);
    QVERIFY(ok);
    QCOMPARE(root.id, 0);
    QCOMPARE(root.properties.value(QStringLiteral("children-display")).toString(),
             QStringLiteral("submenu"));
    QStringList labels;
    QList<int> ids;
    for (const WireDecode::MenuNode &child : root.children) {
        labels.append(child.properties.value(QStringLiteral("label")).toString());
        ids.append(child.id);
    }
    // A literal underscore is doubled so that it is not read as a mnemonic.
    QCOMPARE(labels, QStringList({QStringLiteral("Alpha"), QStringLiteral("Beta__1"),
                                  QStringLiteral("Gamma\u2026")}));
    QCOMPARE(ids, QList<int>({1, 2, 3}));
}

void TestDBusMenuExporter::layoutDepthAndNames_data()
{
    QTest::addColumn<int>("parentId");
    QTest::addColumn<int>("depth");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<int>("expectedChildren");
    QTest::addColumn<QStringList>("expectedChildKeys");

    const QStringList label{QStringLiteral("label")};
    QTest::newRow("root, depth 0") << 0 << 0 << QStringList() << 0 << QStringList();
    QTest::newRow("root, depth 1")
        << 0 << 1 << QStringList() << 3
        << QStringList{QStringLiteral("enabled"), QStringLiteral("label"), QStringLiteral("type"),
                       QStringLiteral("visible")};
    QTest::newRow("only labels") << 0 << -1 << label << 3 << label;
    QTest::newRow("only an unknown name")
        << 0 << -1 << QStringList{QStringLiteral("icon-name")} << 3 << QStringList();
    QTest::newRow("an item") << 2 << -1 << QStringList() << 0 << QStringList();
}

void TestDBusMenuExporter::layoutDepthAndNames()
{
    QFETCH(int, parentId);
    QFETCH(int, depth);
    QFETCH(QStringList, names);
    QFETCH(int, expectedChildren);
    QFETCH(QStringList, expectedChildKeys);

    const QDBusMessage reply = callMenu(QStringLiteral("GetLayout"), {parentId, depth, names});
    bool ok = false;
    const WireDecode::MenuNode node = WireDecode::menuLayout(reply.arguments().value(1), &ok);
    QVERIFY(ok);
    QCOMPARE(node.id, parentId);
    QCOMPARE(node.children.size(), expectedChildren);
    for (const WireDecode::MenuNode &child : node.children) {
        QStringList keys = child.properties.keys();
        keys.sort();
        QCOMPARE(keys, expectedChildKeys);
    }
}

void TestDBusMenuExporter::unknownIdIsAnError_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    const QVariant noData = QVariant::fromValue(QDBusVariant(0));
    QTest::newRow("GetLayout") << "GetLayout" << QVariantList{99, -1, QStringList()};
    QTest::newRow("GetProperty") << "GetProperty" << QVariantList{99, QStringLiteral("label")};
    QTest::newRow("GetProperty, unknown name")
        << "GetProperty" << QVariantList{1, QStringLiteral("no-such-property")};
    QTest::newRow("Event") << "Event" << QVariantList{99, QStringLiteral("clicked"), noData, 0u};
    QTest::newRow("AboutToShow") << "AboutToShow" << QVariantList{99};
    QTest::newRow("AboutToShowGroup, none known")
        << "AboutToShowGroup" << QVariantList{QVariant::fromValue(QList<int>{77, 78})};
    QTest::newRow("EventGroup, none known")
        << "EventGroup"
        << QVariantList{QVariant::fromValue(QList<HostEvent>{{98, QStringLiteral("clicked")}})};
}

void TestDBusMenuExporter::unknownIdIsAnError()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);

    QSignalSpy clicked(m_exporter.get(), &DBusMenuExporter::itemClicked);
    const QDBusMessage reply = callMenu(method, arguments);
    QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"));
    QCOMPARE(clicked.size(), 0);
}

void TestDBusMenuExporter::events_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("eventId");
    QTest::addColumn<bool>("emits");
    QTest::newRow("click on an item") << 2 << "clicked" << true;
    QTest::newRow("hover") << 1 << "hovered" << false;
    QTest::newRow("open") << 1 << "opened" << false;
    // A click on the root opens the menu; it is no item of ours.
    QTest::newRow("click on the root") << 0 << "clicked" << false;
}

void TestDBusMenuExporter::events()
{
    QFETCH(int, id);
    QFETCH(QString, eventId);
    QFETCH(bool, emits);

    QSignalSpy clicked(m_exporter.get(), &DBusMenuExporter::itemClicked);
    const QDBusMessage reply = callMenu(
        QStringLiteral("Event"), {id, eventId, QVariant::fromValue(QDBusVariant(QString())), 42u});
    QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
    QCOMPARE(clicked.size(), emits ? 1 : 0);
    if (emits)
        QCOMPARE(clicked.at(0).at(0).toInt(), id);
}

void TestDBusMenuExporter::eventGroupReportsUnknownIds()
{
    QSignalSpy clicked(m_exporter.get(), &DBusMenuExporter::itemClicked);
    const QList<HostEvent> events{{2, QStringLiteral("clicked")}, {99, QStringLiteral("clicked")}};
    const QDBusMessage reply =
        callMenu(QStringLiteral("EventGroup"), {QVariant::fromValue(events)});
    QVERIFY2(reply.type() == QDBusMessage::ReplyMessage, qPrintable(reply.errorMessage()));
    QCOMPARE(qdbus_cast<QList<int>>(reply.arguments().at(0)), QList<int>({99}));
    QCOMPARE(clicked.size(), 1);
    QCOMPARE(clicked.at(0).at(0).toInt(), 2);
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

void TestDBusMenuExporter::interfaceProperties_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("Version") << "Version" << QVariant(3u);
    QTest::newRow("TextDirection") << "TextDirection" << QVariant(QStringLiteral("ltr"));
    QTest::newRow("Status") << "Status" << QVariant(QStringLiteral("normal"));
    QTest::newRow("IconThemePath") << "IconThemePath" << QVariant(QStringList());
}

void TestDBusMenuExporter::interfaceProperties()
{
    QFETCH(QString, name);
    QFETCH(QVariant, expected);
    const QVariant value = TestBus::property(m_client, QDBusConnection::sessionBus().baseService(),
                                             menuPath, menuInterface, name);
    QCOMPARE(value.metaType(), expected.metaType());
    QCOMPARE(value, expected);
}

QTEST_GUILESS_MAIN(TestDBusMenuExporter)
#include "tst_dbusmenuexporter.moc"
