#include "BusSignalRecorder.h"
#include "FakeStatusNotifierWatcher.h"
#include "TestBus.h"
#include "TrayIcon.h"
#include "WireDecode.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QSvgRenderer>
#include <QTest>

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

// The picture a host gets from one pixmap: bytes A, R, G, B per pixel.
QImage decodeNetworkArgb(const WireDecode::Pixmap &pixmap)
{
    QImage image(pixmap.width, pixmap.height, QImage::Format_ARGB32);
    const auto *in = reinterpret_cast<const uchar *>(pixmap.bytes.constData());
    for (int y = 0; y < pixmap.height; ++y) {
        for (int x = 0; x < pixmap.width; ++x, in += 4)
            image.setPixel(x, y, qRgba(in[1], in[2], in[3], in[0]));
    }
    return image;
}

} // namespace

class TestTrayIcon final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void registersItemWithWatcher();
    void fixedProperties_data();
    void fixedProperties();
    void lineReachesTheBus_data();
    void lineReachesTheBus();
    void lineChangeIsAnnounced();
    void iconPixmapSizes();
    void iconPixmapIsNetworkOrderArgb_data();
    void iconPixmapIsNetworkOrderArgb();
    void activateEmitsActivated_data();
    void activateEmitsActivated();
    void restartedWatcherGetsRegistrationAgain_data();
    void restartedWatcherGetsRegistrationAgain();
    void menuLabelsInOrder();
    void menuClickEmitsItsSignal_data();
    void menuClickEmitsItsSignal();
    void noWatcherAndNoTrayMeansNone();
    void watcherAppearingLaterExportsItem();
    void watcherGoneForGoodLeavesTheItem();

private:
    void recreateTrayWithoutWatcher();
    QVariant itemProperty(const QString &name);
    WireDecode::MenuNode menuLayout();

    QDBusConnection m_client{QString()};
    std::unique_ptr<FakeStatusNotifierWatcher> m_watcher;
    std::unique_ptr<TrayIcon> m_tray;
};

void TestTrayIcon::initTestCase()
{
    QVERIFY2(QDBusConnection::sessionBus().isConnected(), "needs a session bus");
    m_client = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("client"));
    QVERIFY(m_client.isConnected());
}

// Every test starts with an item registered with a running watcher.
void TestTrayIcon::init()
{
    m_watcher = std::make_unique<FakeStatusNotifierWatcher>(QStringLiteral("watcher"));
    QVERIFY(m_watcher->start());
    QSignalSpy registered(m_watcher.get(), &FakeStatusNotifierWatcher::itemRegistered);
    m_tray = std::make_unique<TrayIcon>(QDBusConnection::sessionBus());
    QCOMPARE(m_tray->kind(), TrayIcon::Kind::StatusNotifierItem);
    QVERIFY(registered.wait(5000));
}

void TestTrayIcon::cleanup()
{
    m_tray.reset();
    m_watcher.reset();
}

QVariant TestTrayIcon::itemProperty(const QString &name)
{
    return TestBus::property(m_client, itemService(), itemPath, itemInterface, name);
}

WireDecode::MenuNode TestTrayIcon::menuLayout()
{
    // The menu is looked up where the item says it is.
    const QString path = itemProperty(QStringLiteral("Menu")).value<QDBusObjectPath>().path();
    const QDBusMessage reply =
        TestBus::call(m_client, itemService(), path, menuInterface, QStringLiteral("GetLayout"),
                      {0, -1, QStringList{QStringLiteral("label")}});
    bool ok = false;
    const WireDecode::MenuNode root = WireDecode::menuLayout(reply.arguments().value(1), &ok);
    return ok ? root : WireDecode::MenuNode();
}

void TestTrayIcon::registersItemWithWatcher()
{
    QCOMPARE(m_watcher->registeredItems(), QStringList{itemService()});
}

void TestTrayIcon::fixedProperties_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("Category") << "Category" << QVariant(QStringLiteral("ApplicationStatus"));
    QTest::newRow("Id") << "Id" << QVariant(QStringLiteral("io.github.zonara.Zonara"));
    QTest::newRow("Status") << "Status" << QVariant(QStringLiteral("Active"));
    QTest::newRow("WindowId") << "WindowId" << QVariant(0);
    QTest::newRow("IconName") << "IconName" << QVariant(QString());
    QTest::newRow("ItemIsMenu") << "ItemIsMenu" << QVariant(false);
    QTest::newRow("Menu") << "Menu" << QVariant::fromValue(QDBusObjectPath("/MenuBar"));
    QTest::newRow("XAyatanaOrderingIndex") << "XAyatanaOrderingIndex" << QVariant(0u);
}

void TestTrayIcon::fixedProperties()
{
    QFETCH(QString, name);
    QFETCH(QVariant, expected);
    const QVariantMap all =
        TestBus::allProperties(m_client, itemService(), itemPath, itemInterface);
    QVERIFY2(all.contains(name), qPrintable(all.keys().join(u' ')));
    QCOMPARE(all.value(name).metaType(), expected.metaType());
    QCOMPARE(all.value(name), expected);
}

void TestTrayIcon::lineReachesTheBus_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title");
    QTest::newRow("pinned cities") << "STO 14:05  TYO 22:05"
                                   << "STO 14:05  TYO 22:05";
    QTest::newRow("non-ASCII nickname")
        << QString::fromUtf8("Mamá 2:05PM") << QString::fromUtf8("Mamá 2:05PM");
    QTest::newRow("globe") << ""
                           << "Zonara";
}

void TestTrayIcon::lineReachesTheBus()
{
    QFETCH(QString, text);
    QFETCH(QString, title);

    // From another line, so that this one is a change.
    m_tray->setLine(QStringLiteral("LON 13:05"), accessibleNameFor(QStringLiteral("LON 13:05")));
    m_tray->setLine(text, accessibleNameFor(text));

    QCOMPARE(itemProperty(QStringLiteral("XAyatanaLabel")).toString(), text);
    QCOMPARE(itemProperty(QStringLiteral("Title")).toString(), title);
    // The guide leaves room for the label, and is empty with it.
    const QString guide = itemProperty(QStringLiteral("XAyatanaLabelGuide")).toString();
    QVERIFY(guide.size() >= text.size());
    QCOMPARE(guide.isEmpty(), text.isEmpty());
    bool ok = false;
    QCOMPARE(WireDecode::toolTipTitle(itemProperty(QStringLiteral("ToolTip")), &ok),
             accessibleNameFor(text));
    QVERIFY(ok);
    // The globe stays the icon, beside a label or alone.
    const QList<WireDecode::Pixmap> icon =
        WireDecode::pixmaps(itemProperty(QStringLiteral("IconPixmap")), &ok);
    QVERIFY(ok);
    QVERIFY(!icon.isEmpty() && !icon.constFirst().bytes.isEmpty());
}

void TestTrayIcon::lineChangeIsAnnounced()
{
    BusSignalRecorder newLabel(m_client, itemPath, itemInterface,
                               QStringLiteral("XAyatanaNewLabel"));
    BusSignalRecorder newTitle(m_client, itemPath, itemInterface, QStringLiteral("NewTitle"));
    BusSignalRecorder newToolTip(m_client, itemPath, itemInterface, QStringLiteral("NewToolTip"));
    QVERIFY(newLabel.isConnected() && newTitle.isConnected() && newToolTip.isConnected());

    const QString first = QStringLiteral("STO 14:05  TYO 22:05");
    m_tray->setLine(first, accessibleNameFor(first));
    QTRY_COMPARE_WITH_TIMEOUT(newLabel.count(), 1, 5000);
    QTRY_COMPARE_WITH_TIMEOUT(newTitle.count(), 1, 5000);
    QTRY_COMPARE_WITH_TIMEOUT(newToolTip.count(), 1, 5000);
    QCOMPARE(newLabel.messages().at(0).arguments().value(0).toString(), first);

    // Unchanged, then changed: only the change is announced.
    m_tray->setLine(first, accessibleNameFor(first));
    const QString second = QStringLiteral("STO 14:06  TYO 22:06");
    m_tray->setLine(second, accessibleNameFor(second));
    QTRY_COMPARE_WITH_TIMEOUT(newToolTip.count(), 2, 5000);
    QCOMPARE(newLabel.count(), 2);
    QCOMPARE(newTitle.count(), 2);
    QCOMPARE(newLabel.messages().at(1).arguments().value(0).toString(), second);

    // Back to the globe: the label empties.
    m_tray->setLine(QString(), accessibleNameFor(QString()));
    QTRY_COMPARE_WITH_TIMEOUT(newTitle.count(), 3, 5000);
    QTRY_COMPARE_WITH_TIMEOUT(newLabel.count(), 3, 5000);
    QCOMPARE(newLabel.messages().at(2).arguments().value(0).toString(), QString());
}

void TestTrayIcon::iconPixmapSizes()
{
    bool ok = false;
    QList<int> sizes;
    for (const auto &pixmap :
         WireDecode::pixmaps(itemProperty(QStringLiteral("IconPixmap")), &ok)) {
        QCOMPARE(pixmap.height, pixmap.width);
        QCOMPARE(pixmap.bytes.size(), qsizetype(pixmap.width) * pixmap.height * 4);
        sizes.append(pixmap.width);
    }
    QVERIFY(ok);
    QCOMPARE(sizes, QList<int>({16, 22, 24, 32, 48, 64}));
}

void TestTrayIcon::iconPixmapIsNetworkOrderArgb_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("size");
    QTest::newRow("16") << 0 << 16;
    QTest::newRow("24") << 2 << 24;
    QTest::newRow("64") << 5 << 64;
}

void TestTrayIcon::iconPixmapIsNetworkOrderArgb()
{
    QFETCH(int, index);
    QFETCH(int, size);

    bool ok = false;
    const auto pixmaps = WireDecode::pixmaps(itemProperty(QStringLiteral("IconPixmap")), &ok);
    QVERIFY(ok && pixmaps.size() > index);
    QCOMPARE(pixmaps.at(index).width, size);
    const QImage received = decodeNetworkArgb(pixmaps.at(index));

    // The globe resource as a host should see it: straight, not premultiplied, alpha.
    QImage reference(size, size, QImage::Format_ARGB32_Premultiplied);
    reference.fill(Qt::transparent);
    QSvgRenderer renderer(QStringLiteral(":/icons/globe.svg"));
    QVERIFY(renderer.isValid());
    QPainter painter(&reference);
    renderer.render(&painter);
    painter.end();
    reference = reference.convertToFormat(QImage::Format_ARGB32);

    int opaque = 0;
    int transparent = 0;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const QRgb got = received.pixel(x, y);
            const QRgb want = reference.pixel(x, y);
            QVERIFY2(qAbs(qAlpha(got) - qAlpha(want)) <= 1 && qAbs(qRed(got) - qRed(want)) <= 1 &&
                         qAbs(qGreen(got) - qGreen(want)) <= 1 &&
                         qAbs(qBlue(got) - qBlue(want)) <= 1,
                     qPrintable(QStringLiteral("pixel %1,%2: got %3, want %4")
                                    .arg(x)
                                    .arg(y)
                                    .arg(got, 8, 16)
                                    .arg(want, 8, 16)));
            opaque += qAlpha(got) == 255;
            transparent += qAlpha(got) == 0;
        }
    }
    // A globe, not an empty or a filled square.
    QVERIFY(opaque > size);
    QVERIFY(transparent > size);
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
    QCOMPARE(activated.size(), 1);
    QCOMPARE(activated.at(0).at(0).toPoint(), position);
}

void TestTrayIcon::restartedWatcherGetsRegistrationAgain_data()
{
    QTest::addColumn<bool>("newConnection");
    QTest::newRow("same connection takes the name again") << false;
    QTest::newRow("another client takes the name") << true;
}

void TestTrayIcon::restartedWatcherGetsRegistrationAgain()
{
    QFETCH(bool, newConnection);
    QSignalSpy kindChanged(m_tray.get(), &TrayIcon::kindChanged);

    m_watcher->stop();
    std::unique_ptr<FakeStatusNotifierWatcher> other;
    FakeStatusNotifierWatcher *watcher = m_watcher.get();
    if (newConnection) {
        other = std::make_unique<FakeStatusNotifierWatcher>(QStringLiteral("watcher-2"));
        watcher = other.get();
    }
    QSignalSpy registered(watcher, &FakeStatusNotifierWatcher::itemRegistered);
    QVERIFY(watcher->start());
    QVERIFY(registered.wait(5000));
    QCOMPARE(registered.at(0).at(0).toString(), itemService());
    // A quick restart is no reason to leave the watcher.
    QCOMPARE(m_tray->kind(), TrayIcon::Kind::StatusNotifierItem);
    QCOMPARE(kindChanged.size(), 0);
}

void TestTrayIcon::menuLabelsInOrder()
{
    QStringList labels;
    for (const WireDecode::MenuNode &child : menuLayout().children)
        labels.append(child.properties.value(QStringLiteral("label")).toString());
    QCOMPARE(labels, QStringList({QStringLiteral("Show Zonara"), QStringLiteral("Settings\u2026"),
                                  QStringLiteral("Quit")}));
}

void TestTrayIcon::menuClickEmitsItsSignal_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QList<int>>("expected"); // show, settings, quit
    QTest::newRow("show") << "Show Zonara" << QList<int>{1, 0, 0};
    QTest::newRow("settings") << QStringLiteral("Settings\u2026") << QList<int>{0, 1, 0};
    QTest::newRow("quit") << "Quit" << QList<int>{0, 0, 1};
}

void TestTrayIcon::menuClickEmitsItsSignal()
{
    QFETCH(QString, label);
    QFETCH(QList<int>, expected);

    int id = -1;
    for (const WireDecode::MenuNode &child : menuLayout().children) {
        if (child.properties.value(QStringLiteral("label")).toString() == label)
            id = child.id;
    }
    QVERIFY2(id > 0, qPrintable(label));

    QSignalSpy show(m_tray.get(), &TrayIcon::showRequested);
    QSignalSpy settings(m_tray.get(), &TrayIcon::settingsRequested);
    QSignalSpy quit(m_tray.get(), &TrayIcon::quitRequested);
    const QDBusMessage reply = TestBus::call(
        m_client, itemService(), QStringLiteral("/MenuBar"), menuInterface, QStringLiteral("Event"),
        {id, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant(0)), 0u});
    QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
    QCOMPARE(QList<int>({int(show.size()), int(settings.size()), int(quit.size())}), expected);
}

void TestTrayIcon::recreateTrayWithoutWatcher()
{
    m_tray.reset();
    m_watcher->stop();
    m_tray = std::make_unique<TrayIcon>(QDBusConnection::sessionBus());
}

void TestTrayIcon::noWatcherAndNoTrayMeansNone()
{
    // The offscreen platform has no system tray either.
    recreateTrayWithoutWatcher();
    QCOMPARE(m_tray->kind(), TrayIcon::Kind::None);
}

void TestTrayIcon::watcherAppearingLaterExportsItem()
{
    recreateTrayWithoutWatcher();
    QCOMPARE(m_tray->kind(), TrayIcon::Kind::None);
    QSignalSpy kindChanged(m_tray.get(), &TrayIcon::kindChanged);
    QSignalSpy registered(m_watcher.get(), &FakeStatusNotifierWatcher::itemRegistered);

    QVERIFY(m_watcher->start());
    QVERIFY(registered.wait(5000));
    QCOMPARE(m_tray->kind(), TrayIcon::Kind::StatusNotifierItem);
    QCOMPARE(kindChanged.size(), 1);
}

void TestTrayIcon::watcherGoneForGoodLeavesTheItem()
{
    QSignalSpy kindChanged(m_tray.get(), &TrayIcon::kindChanged);
    m_watcher->stop();
    QVERIFY(kindChanged.wait(TrayIcon::fallbackDelayMs + 5000));
    QCOMPARE(m_tray->kind(), TrayIcon::Kind::None);
    QCOMPARE(kindChanged.size(), 1);
}

QTEST_MAIN(TestTrayIcon)
#include "tst_trayicon.moc"
