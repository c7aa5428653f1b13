#include "SniToolTip.h"
#include "TestBus.h"
#include "TrayIcon.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusObjectPath>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSvgRenderer>
#include <QTemporaryDir>

#include <algorithm>
#include <memory>

namespace {

const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");

QString itemService()
{
    return QStringLiteral("org.kde.StatusNotifierItem-%1-1")
        .arg(QCoreApplication::applicationPid());
}

QString accessibleNameFor(const QString &text)
{
    return text.isEmpty() ? QStringLiteral("Zonara") : QStringLiteral("Zonara, ") + text;
}

// An a(iiay) icon as a host reads it: bytes A, R, G, B per pixel. A null
// image where the bytes do not fit the size; nothing if the signature is wrong.
QList<QImage> iconImages(const QVariant &value)
{
    QList<QImage> result;
    if (!TestBus::hasSignature(value, QLatin1String("a(iiay)")))
        return result;
    const QDBusArgument argument = value.value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd()) {
        int width = 0;
        int height = 0;
        QByteArray bytes;
        argument.beginStructure();
        argument >> width >> height >> bytes;
        argument.endStructure();
        QImage image;
        if (bytes.size() == qsizetype(width) * height * 4) {
            image = QImage(width, height, QImage::Format_ARGB32);
            const auto *in = reinterpret_cast<const uchar *>(bytes.constData());
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width; ++x, in += 4)
                    image.setPixel(x, y, qRgba(in[1], in[2], in[3], in[0]));
            }
        }
        result.append(image);
    }
    argument.endArray();
    return result;
}

} // namespace

// Plays the panel: the watcher the item registers with, and a host that
// records the item's signals as "member first-argument", sorted.
class FakeHost final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")

public:
    QStringList items;
    QStringList seen;

public Q_SLOTS:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString &service) { items.append(service); }
    void record(const QDBusMessage &message)
    {
        seen.append(message.member() + u' ' + message.arguments().value(0).toString());
        seen.sort();
    }
};

class TestTrayIcon final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup()
    {
        m_tray.reset();
        stopWatcher();
    }

    void lineReachesTheBus_data();
    void lineReachesTheBus();
    void globeIsNetworkOrderArgb();
    void iconNameOnlyWhereInstalled_data();
    void iconNameOnlyWhereInstalled();
    void activateEmitsActivated_data();
    void activateEmitsActivated();
    void restartedWatcherGetsTheItemAgain();
    void menuClickEmitsItsSignal_data();
    void menuClickEmitsItsSignal();
    void noWatcherAndNoTrayMeansNoneUntilOneAppears();
    void watcherGoneForGoodLeavesTheItem();

private:
    void startWatcher();
    void stopWatcher() { m_client.unregisterService(watcherService); }
    QVariant itemProperty(const QString &name)
    {
        return TestBus::property(m_client, itemService(), itemPath, itemInterface, name);
    }

    const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
    QDBusConnection m_client{QString()};
    FakeHost m_host;
    std::unique_ptr<TrayIcon> m_tray;
};

void TestTrayIcon::initTestCase()
{
    QVERIFY2(QDBusConnection::sessionBus().isConnected(), "needs a session bus");
    m_client = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("client"));
    QVERIFY(m_client.registerObject(QStringLiteral("/StatusNotifierWatcher"), &m_host,
                                    QDBusConnection::ExportScriptableSlots));
    for (const char *name : {"XAyatanaNewLabel", "NewTitle", "NewToolTip"}) {
        QVERIFY(m_client.connect(QString(), itemPath, itemInterface, QLatin1String(name), &m_host,
                                 SLOT(record(QDBusMessage))));
    }
}

// Every test starts with an item registered with a running watcher.
void TestTrayIcon::init()
{
    QVERIFY(m_client.registerService(watcherService));
    // A round trip on the item's connection: the watcher's arrival is read
    // there before the new item listens, or the item would register twice.
    QVERIFY(QDBusConnection::sessionBus().interface()->isServiceRegistered(watcherService));
    m_host.items.clear();
    m_tray = std::make_unique<TrayIcon>(QDBusConnection::sessionBus());
    QCOMPARE(m_tray->kind(), TrayIcon::Kind::StatusNotifierItem);
    // The previous test's item has the same name and may still be heard of
    // here; how often the item registers is startWatcher's to check.
    QTRY_VERIFY_WITH_TIMEOUT(m_host.items.contains(itemService()), 5000);
    m_host.seen.clear();
}

// The watcher is back, as when the panel restarts; the item registers again.
void TestTrayIcon::startWatcher()
{
    m_host.items.clear();
    QVERIFY(m_client.registerService(watcherService));
    QTRY_COMPARE_WITH_TIMEOUT(m_host.items, QStringList{itemService()}, 5000);
}

void TestTrayIcon::lineReachesTheBus_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("pinned cities") << QString::fromUtf8("Mamá 2:05PM  TYO 22:05");
    QTest::newRow("nothing pinned") << "";
}

void TestTrayIcon::lineReachesTheBus()
{
    QFETCH(QString, text);

    // From another line, so that this one is a change; unchanged, it is not announced again.
    const QString previous = QStringLiteral("LON 13:05");
    m_tray->setLine(previous, accessibleNameFor(previous));
    const QString guide =
        QString(text).replace(QRegularExpression(QStringLiteral("\\d")), QStringLiteral("0"));
    m_tray->setLine(text, accessibleNameFor(text), guide);
    m_tray->setLine(text, accessibleNameFor(text), guide);

    QCOMPARE(itemProperty(QStringLiteral("XAyatanaLabel")).toString(), text);
    // The tooltip carries the line too, as its accessible name.
    const QVariant toolTip = itemProperty(QStringLiteral("ToolTip"));
    QVERIFY(TestBus::hasSignature(toolTip, QLatin1String("(sa(iiay)ss)")));
    SniToolTip tip;
    toolTip.value<QDBusArgument>() >> tip;
    QCOMPARE(tip.title, accessibleNameFor(text));
    // The title does not tick with the minutes.
    QCOMPARE(itemProperty(QStringLiteral("Title")).toString(), QStringLiteral("Zonara"));
    // Hosts hide a passive item.
    QCOMPARE(itemProperty(QStringLiteral("Status")).toString(), QStringLiteral("Active"));
    // The guide leaves room for the label, and is empty with it.
    QCOMPARE(itemProperty(QStringLiteral("XAyatanaLabelGuide")).toString(), guide);
    // The globe stays the icon, beside a label or alone.
    const QList<QImage> icon = iconImages(itemProperty(QStringLiteral("IconPixmap")));
    QVERIFY(!icon.isEmpty() && !icon.contains(QImage()));

    // One signal that carries the label and one for the tooltip, per change.
    // They come in order: the last line's arriving means none is still on
    // its way, the unchanged line's included.
    const QString last = QStringLiteral("NYC 08:05");
    m_tray->setLine(last, accessibleNameFor(last));
    QStringList expected;
    for (const QString &label : {previous, text, last})
        expected << QStringLiteral("NewToolTip ") << QStringLiteral("XAyatanaNewLabel ") + label;
    expected.sort();
    QTRY_COMPARE_WITH_TIMEOUT(m_host.seen, expected, 5000);
}

void TestTrayIcon::globeIsNetworkOrderArgb()
{
    m_tray->setLine(QString(), accessibleNameFor(QString()));
    const QList<QImage> icon = iconImages(itemProperty(QStringLiteral("IconPixmap")));
    QVERIFY(!icon.isEmpty());
    const QImage largest = *std::max_element(
        icon.begin(), icon.end(), [](auto &a, auto &b) { return a.width() < b.width(); });
    const int size = largest.width();
    QCOMPARE(largest.height(), size);

    // The globe resource as a host should see it: straight, not premultiplied, alpha.
    QImage reference(size, size, QImage::Format_ARGB32_Premultiplied);
    reference.fill(Qt::transparent);
    QSvgRenderer renderer(QStringLiteral(":/icons/globe.svg"));
    QVERIFY(renderer.isValid());
    QPainter painter(&reference);
    renderer.render(&painter);
    painter.end();
    reference = reference.convertToFormat(QImage::Format_ARGB32);

    int worst = 0;
    int opaque = 0;
    int transparent = 0;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const QRgb got = largest.pixel(x, y);
            const QRgb want = reference.pixel(x, y);
            worst = std::max({worst, qAbs(qAlpha(got) - qAlpha(want)), qAbs(qRed(got) - qRed(want)),
                              qAbs(qGreen(got) - qGreen(want)), qAbs(qBlue(got) - qBlue(want))});
            opaque += qAlpha(got) == 255;
            transparent += qAlpha(got) == 0;
        }
    }
    QCOMPARE_LE(worst, 1);
    // A globe, not an empty or a filled square.
    QVERIFY(opaque > size);
    QVERIFY(transparent > size);
}

void TestTrayIcon::iconNameOnlyWhereInstalled_data()
{
    QTest::addColumn<bool>("installed");
    QTest::newRow("installed") << true;
    // Hosts draw a missing-icon sign for a name they cannot find, not the pixmaps.
    QTest::newRow("not installed, as when run from a build") << false;
}

void TestTrayIcon::iconNameOnlyWhereInstalled()
{
    QFETCH(bool, installed);
    const QString name = QStringLiteral("io.github.zonara.Zonara-symbolic");
    QTemporaryDir icons;
    QVERIFY(QDir(icons.path()).mkpath(QStringLiteral("hicolor/scalable/apps")));
    QFile index(icons.filePath(QStringLiteral("hicolor/index.theme")));
    QVERIFY(index.open(QIODevice::WriteOnly));
    index.write("[Icon Theme]\nName=hicolor\nDirectories=scalable/apps\n\n"
                "[scalable/apps]\nSize=16\nMinSize=8\nMaxSize=512\nType=Scalable\n");
    index.close();
    if (installed) {
        QVERIFY(QFile::copy(QStringLiteral(":/icons/globe.svg"),
                            icons.filePath(QStringLiteral("hicolor/scalable/apps/") + name +
                                           QStringLiteral(".svg"))));
    }
    const QStringList searchPaths = QIcon::themeSearchPaths();
    const QString themeName = QIcon::themeName();
    QIcon::setThemeSearchPaths({icons.path()});
    QIcon::setThemeName(QStringLiteral("hicolor"));
    // The theme is looked at when the item starts.
    m_tray.reset();
    m_tray = std::make_unique<TrayIcon>(QDBusConnection::sessionBus());
    const QString shown = itemProperty(QStringLiteral("IconName")).toString();
    QIcon::setThemeSearchPaths(searchPaths);
    QIcon::setThemeName(themeName);
    QCOMPARE(shown, installed ? name : QString());
}

void TestTrayIcon::activateEmitsActivated_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::newRow("10, 20") << QPoint(10, 20);
    QTest::newRow("left of the primary screen") << QPoint(-1280, 12);
}

void TestTrayIcon::activateEmitsActivated()
{
    QFETCH(QPoint, position);
    QSignalSpy activated(m_tray.get(), &TrayIcon::activated);
    const QDBusMessage reply =
        TestBus::call(m_client, itemService(), itemPath, itemInterface, QStringLiteral("Activate"),
                      {position.x(), position.y()});
    QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
    // Answered on the bus's thread; the signal crosses to ours after the reply.
    QTRY_COMPARE_WITH_TIMEOUT(activated.size(), 1, 5000);
    QCOMPARE(activated.at(0).at(0).toPoint(), position);
}

void TestTrayIcon::restartedWatcherGetsTheItemAgain()
{
    QSignalSpy kindChanged(m_tray.get(), &TrayIcon::kindChanged);
    stopWatcher();
    startWatcher();
    // A quick restart is no reason to leave the watcher.
    QCOMPARE(m_tray->kind(), TrayIcon::Kind::StatusNotifierItem);
    QCOMPARE(kindChanged.size(), 0);
}

void TestTrayIcon::menuClickEmitsItsSignal_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QList<int>>("expected"); // show, settings, quit
    QTest::addColumn<QString>("city");        // the key of the city chosen
    QTest::newRow("a pinned city") << 1 << QList<int>{0, 0, 0} << "lon";
    QTest::newRow("an unpinned city") << 3 << QList<int>{0, 0, 0} << "nyc";
    QTest::newRow("a separator") << 2 << QList<int>{0, 0, 0} << "";
    QTest::newRow("Show Zonara") << 5 << QList<int>{1, 0, 0} << "";
    QTest::newRow("Settings") << 6 << QList<int>{0, 1, 0} << "";
    QTest::newRow("Quit") << 7 << QList<int>{0, 0, 1} << "";
}

void TestTrayIcon::menuClickEmitsItsSignal()
{
    QFETCH(int, index);
    QFETCH(QList<int>, expected);
    QFETCH(QString, city);

    QString minute = QStringLiteral("05");
    m_tray->setCityList([&minute] {
        return QList<TrayIcon::City>{
            {QStringLiteral("tyo"), QStringLiteral("Tokyo 22:") + minute, true},
            {QStringLiteral("lon"), QStringLiteral("London 13:") + minute, true},
            {QStringLiteral("nyc"), QStringLiteral("New York 08:") + minute, false}};
    });
    // The menu is looked up where the item says it is.
    const QString path = itemProperty(QStringLiteral("Menu")).value<QDBusObjectPath>().path();
    const auto menuCall = [&](const QString &method, const QVariantList &arguments) {
        return TestBus::call(m_client, itemService(), path, menuInterface, method, arguments);
    };
    const auto labels = [&] {
        return TestBus::menuNode(
            menuCall(QStringLiteral("GetLayout"), {0, -1, QStringList{QStringLiteral("label")}})
                .arguments()
                .value(1));
    };
    const TestBus::MenuNode root = labels();
    QCOMPARE(
        root.labels(),
        QStringList({QStringLiteral("Tokyo 22:05"), QStringLiteral("London 13:05"), QString(),
                     QStringLiteral("New York 08:05"), QString(), QStringLiteral("Show Zonara"),
                     QStringLiteral("Settings\u2026"), QStringLiteral("Quit")}));

    QSignalSpy show(m_tray.get(), &TrayIcon::showRequested);
    QSignalSpy settings(m_tray.get(), &TrayIcon::settingsRequested);
    QSignalSpy quit(m_tray.get(), &TrayIcon::quitRequested);
    QSignalSpy chosen(m_tray.get(), &TrayIcon::cityChosen);
    const auto event = [&](int id, const QString &eventId) {
        return menuCall(QStringLiteral("Event"),
                        {id, eventId, QVariant::fromValue(QDBusVariant(0)), 0u});
    };
    QCOMPARE(event(root.children.at(index).id, QStringLiteral("clicked")).type(),
             QDBusMessage::ReplyMessage);
    QCOMPARE(QList<int>({int(show.size()), int(settings.size()), int(quit.size())}), expected);
    QCOMPARE(chosen.size(), city.isEmpty() ? 0 : 1);
    if (!city.isEmpty())
        QCOMPARE(chosen.at(0).at(0).toString(), city);

    // Times move on while the menu is open, and a closed menu costs nothing
    // until it is about to show again.
    event(0, QStringLiteral("opened"));
    minute = QStringLiteral("06");
    m_tray->updateCityTimes();
    QCOMPARE(labels().labels().at(0), QStringLiteral("Tokyo 22:06"));
    event(0, QStringLiteral("closed"));
    minute = QStringLiteral("07");
    m_tray->updateCityTimes();
    QCOMPARE(labels().labels().at(0), QStringLiteral("Tokyo 22:06"));
    QVERIFY(menuCall(QStringLiteral("AboutToShow"), {0}).arguments().value(0).toBool());
    QCOMPARE(labels().labels().at(0), QStringLiteral("Tokyo 22:07"));
    // A changed list reaches a closed menu at once, so it opens at its full size.
    minute = QStringLiteral("08");
    m_tray->reloadCities();
    QCOMPARE(labels().labels().at(0), QStringLiteral("Tokyo 22:08"));
}

void TestTrayIcon::noWatcherAndNoTrayMeansNoneUntilOneAppears()
{
    m_tray.reset();
    stopWatcher();
    // The offscreen platform has no system tray either.
    m_tray = std::make_unique<TrayIcon>(QDBusConnection::sessionBus());
    QCOMPARE(m_tray->kind(), TrayIcon::Kind::None);

    QSignalSpy kindChanged(m_tray.get(), &TrayIcon::kindChanged);
    startWatcher();
    QCOMPARE(m_tray->kind(), TrayIcon::Kind::StatusNotifierItem);
    QCOMPARE(kindChanged.size(), 1);
}

void TestTrayIcon::watcherGoneForGoodLeavesTheItem()
{
    QSignalSpy kindChanged(m_tray.get(), &TrayIcon::kindChanged);
    stopWatcher();
    QVERIFY(kindChanged.wait(TrayIcon::fallbackDelayMs + 5000));
    QCOMPARE(m_tray->kind(), TrayIcon::Kind::None);
    QCOMPARE(kindChanged.size(), 1);
}

QTEST_MAIN(TestTrayIcon)
#include "tst_trayicon.moc"
