#include "AddZoneView.h"
#include "FakeStatusNotifierWatcher.h"
#include "PanelWindow.h"
#include "SingleInstance.h"
#include "ZonaraApp.h"
#include "ZoneListView.h"
#include "ZoneResultsModel.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

// The whole program in one process, driven as a person would: from the tray
// item to a new pinned city in the tray line.
class TestPanelFlow final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void addAndPinFromTheTray();
    void appletOpensThePanel();

private:
    void activateTrayItem();
    QString trayLabel();
    QWidget *cardNamed(const QString &name) const;

    QTemporaryDir m_home;
    QDBusConnection m_client = QDBusConnection(QString());
    FakeStatusNotifierWatcher m_watcher;
    std::unique_ptr<SingleInstance> m_instance;
    std::unique_ptr<ZonaraApp> m_app;
};

void TestPanelFlow::initTestCase()
{
    QVERIFY(m_home.isValid());
    qputenv("XDG_CONFIG_HOME", m_home.path().toLocal8Bit());
    // The watcher and the test's own calls use a connection of their own, as a
    // panel host would.
    m_client = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("host"));
    QVERIFY2(m_client.isConnected(), "run inside dbus-run-session");
    QVERIFY(m_watcher.start(m_client));

    m_instance = std::make_unique<SingleInstance>(QDBusConnection::sessionBus());
    QVERIFY(m_instance->claim());
    m_app = std::make_unique<ZonaraApp>(*m_instance, SingleInstance::Request::reopen);
    QTRY_VERIFY_WITH_TIMEOUT(!m_watcher.items().isEmpty(), 10000);
    QVERIFY(!m_app->panel().isVisible());
}

void TestPanelFlow::cleanupTestCase()
{
    m_app.reset();
    m_instance.reset();
}

void TestPanelFlow::activateTrayItem()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        m_watcher.items().constFirst(), QStringLiteral("/StatusNotifierItem"),
        QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("Activate"));
    call << 600 << 10;
    m_client.asyncCall(call);
}

QString TestPanelFlow::trayLabel()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        m_watcher.items().constFirst(), QStringLiteral("/StatusNotifierItem"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << QStringLiteral("org.kde.StatusNotifierItem") << QStringLiteral("XAyatanaLabel");
    QDBusPendingCall pending = m_client.asyncCall(call);
    // The item answers from this thread's event loop.
    QElapsedTimer waited;
    waited.start();
    while (!pending.isFinished() && waited.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    const QDBusMessage reply = pending.reply();
    if (reply.type() != QDBusMessage::ReplyMessage)
        return QStringLiteral("<no answer>");
    return reply.arguments().constFirst().value<QDBusVariant>().variant().toString();
}

QWidget *TestPanelFlow::cardNamed(const QString &name) const
{
    for (QLabel *label : m_app->panel().findChildren<QLabel *>(QStringLiteral("zone-name"))) {
        if (label->text() == name && label->isVisible())
            return label->parentWidget();
    }
    return nullptr;
}

void TestPanelFlow::addAndPinFromTheTray()
{
    PanelWindow &panel = m_app->panel();
    activateTrayItem();
    QTRY_VERIFY_WITH_TIMEOUT(panel.isVisible(), 5000);
    auto *list = panel.findChild<ZoneListView *>();
    QVERIFY(list);
    QVERIFY(!list->isShowingAdd());
    // Seeded with the system's zone, which shows as the globe: nothing pinned.
    QCOMPARE(trayLabel(), QString());

    QTest::mouseClick(list->findChild<QPushButton *>("add-city-button"), Qt::LeftButton);
    QVERIFY(list->isShowingAdd());
    auto *field = list->addView()->findChild<QLineEdit *>("city-search");
    QTRY_VERIFY(field->hasFocus());
    QTest::keyClicks(field, QStringLiteral("stock"));
    auto *results = list->addView()->findChild<QListView *>("add-city-results");
    const QModelIndex first = results->model()->index(0, 0);
    QCOMPARE(first.data(ZoneResultsModel::TitleRole).toString(), QStringLiteral("Stockholm"));
    QTest::mouseClick(results->viewport(), Qt::LeftButton, {}, results->visualRect(first).center());

    QTRY_VERIFY(!list->isShowingAdd());
    QCOMPARE(m_app->store().zones().last().identifier, QStringLiteral("Europe/Stockholm"));
    QWidget *card = nullptr;
    QTRY_VERIFY((card = cardNamed(QStringLiteral("Stockholm"))) != nullptr);

    QWidget *row = card;
    while (row && !row->findChild<QWidget *>("pin-button"))
        row = row->parentWidget();
    QVERIFY(row);
    QTest::mouseClick(row->findChild<QWidget *>("pin-button"), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(trayLabel().startsWith(QStringLiteral("STO ")), 5000);

    QTest::keyClick(panel.windowHandle(), Qt::Key_Escape);
    QTRY_VERIFY(!panel.isVisible());

    activateTrayItem();
    QTRY_VERIFY_WITH_TIMEOUT(panel.isVisible(), 5000);
    QVERIFY(!list->isShowingAdd());
    QVERIFY(cardNamed(QStringLiteral("Stockholm")));
}

void TestPanelFlow::appletOpensThePanel()
{
    PanelWindow &panel = m_app->panel();
    panel.hide();
    const QPoint click(900, 790);
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("io.github.zonara.Zonara"), QStringLiteral("/io/github/zonara/Zonara"),
        QStringLiteral("io.github.zonara.Zones1"), QStringLiteral("TogglePanel"));
    call << click.x() << click.y();
    m_client.asyncCall(call);

    QTRY_VERIFY_WITH_TIMEOUT(panel.isVisible(), 5000);
    // A panel along the bottom edge: Zonara's opens above the click.
    QVERIFY(panel.geometry().bottom() < click.y());
    QVERIFY(qAbs(panel.geometry().center().x() - click.x()) <= 1);
}

QTEST_MAIN(TestPanelFlow)
#include "tst_panelflow.moc"
