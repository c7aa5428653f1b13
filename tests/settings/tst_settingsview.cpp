#include "AddZoneView.h"
#include "AppUpdater.h"
#include "GeneralTab.h"
#include "LaunchAtLogin.h"
#include "MemoryPreferencesStore.h"
#include "MenuBarTab.h"
#include "PanelTestSupport.h"
#include "SettingsView.h"
#include "TextLine.h"
#include "ToggleSwitch.h"
#include "UpdateEngine.h"

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeEdit>

namespace {

const QString loginFailure =
    QStringLiteral("Could not update the login item. Try again in System Settings.");

} // namespace

class TestSettingsView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void previewFollowsPinsAndFormat();
    void pickerFollowsTheStore();
    void updateRows_data();
    void updateRows();
    void refusedSwitchSpringsBack();
    void addSheetOpensAgain_data();
    void addSheetOpensAgain();
    void quitZonara();
    void launchAtLogin();
    void loginEntryEditedElsewhere();
    void workingHours();

private:
    // An updater with a feed and a key (so it starts), optionally installed
    // as a writable AppImage (so it may install by itself).
    void makeView(bool asAppImage = false, bool noFeed = false);
    template<typename T> T *find(const char *name) const
    {
        T *child = m_view->findChild<T *>(QString::fromLatin1(name));
        if (!child)
            qFatal("no %s", name);
        return child;
    }
    void leaveAndComeBack();

    std::unique_ptr<QTemporaryDir> m_config;
    std::unique_ptr<PanelFixture> m_fixture;
    MemoryPreferencesStore m_updatePreferences;
    std::unique_ptr<AppUpdater> m_updater;
    std::unique_ptr<SettingsView> m_view;
};

void TestSettingsView::init()
{
    m_config = std::make_unique<QTemporaryDir>();
    qputenv("XDG_CONFIG_HOME", m_config->path().toLocal8Bit());
    m_fixture = std::make_unique<PanelFixture>(
        QList<SavedZone>{makeZone(QStringLiteral("Europe/Stockholm")),
                         makeZone(QStringLiteral("Asia/Tokyo"), QStringLiteral("Tokyo office"))});
    m_updatePreferences = MemoryPreferencesStore();
}

void TestSettingsView::cleanup()
{
    m_view.reset();
    m_updater.reset();
    m_fixture.reset();
}

void TestSettingsView::makeView(bool asAppImage, bool noFeed)
{
    UpdateConfiguration configuration;
    if (!noFeed)
        configuration.feedUrl = QUrl(QStringLiteral("https://updates.invalid/appcast.xml"));
    configuration.publicKeyBase64 = QByteArray(32, 'k').toBase64();
    configuration.currentVersion = QStringLiteral("0.1.0");
    if (asAppImage) {
        QFile image(m_config->filePath(QStringLiteral("Zonara.AppImage")));
        QVERIFY(image.open(QIODevice::WriteOnly));
        configuration.appImagePath = image.fileName();
    }
    m_updater = std::make_unique<AppUpdater>(m_updatePreferences, configuration, nullptr);
    m_view = std::make_unique<SettingsView>(*m_fixture->store, *m_fixture->clock, *m_updater);
    m_view->show();
    m_view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
}

void TestSettingsView::leaveAndComeBack()
{
    QWidget elsewhere;
    elsewhere.show();
    elsewhere.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&elsewhere));
    m_view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
}

void TestSettingsView::previewFollowsPinsAndFormat()
{
    makeView();
    auto *preview = find<QLabel>("live-preview");
    auto *hint = find<TextLine>("pin-hint");
    auto *count = find<QLabel>("pinned-count");
    m_view->tabs().setCurrentIndex(1);
    QCOMPARE(preview->text(), QStringLiteral("\u25ce"));
    QVERIFY(hint->isVisible());
    QCOMPARE(count->text(), QStringLiteral("0"));

    m_fixture->store->togglePin(m_fixture->id(1));
    QCOMPARE(preview->text(), QStringLiteral("Tokyo office 09:30"));
    QVERIFY(!hint->isVisible());
    QCOMPARE(count->text(), QStringLiteral("1"));

    // With seconds, every tick of the clock shows.
    m_fixture->store->togglePin(m_fixture->id(0));
    m_fixture->store->setFormat(MenuBarFormat::labelTime24Seconds);
    QCOMPARE(preview->text(), QStringLiteral("STO 01:30:00  Tokyo office 09:30:00"));
    m_fixture->clock->setNow(m_fixture->clock->now().addSecs(1));
    QCOMPARE(preview->text(), QStringLiteral("STO 01:30:01  Tokyo office 09:30:01"));
    QVERIFY(preview->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));

    // The footer says so while edits cannot be saved.
    auto *unsaved = find<TextLine>("save-error");
    QVERIFY(!unsaved->isVisible());
    m_fixture->preferences.setSavesFail(true);
    m_fixture->store->togglePin(m_fixture->id(0));
    QVERIFY(unsaved->isVisible());
    m_fixture->preferences.setSavesFail(false);
    m_fixture->store->togglePin(m_fixture->id(0));
    QVERIFY(!unsaved->isVisible());
}

void TestSettingsView::pickerFollowsTheStore()
{
    makeView();
    auto *picker = find<QComboBox>("time-format");
    QCOMPARE(picker->count(), 5);
    for (int i = 0; i < picker->count(); ++i)
        QCOMPARE(picker->itemText(i), MenuBarFormats::title(MenuBarFormats::allCases().at(i)));

    // Changed elsewhere, e.g. from the command line.
    m_fixture->store->setFormat(MenuBarFormat::labelDayTime24);
    QCOMPARE(picker->currentIndex(), 3);

    m_view->tabs().setCurrentIndex(1);
    picker->setFocus();
    QTest::keyClick(picker, Qt::Key_Up);
    QCOMPARE(m_fixture->store->format(), MenuBarFormat::timeOnly24);
}

void TestSettingsView::updateRows_data()
{
    QTest::addColumn<bool>("asAppImage");
    QTest::addColumn<bool>("noFeed");
    QTest::addColumn<bool>("checked");
    QTest::addColumn<bool>("downloadsEnabled");
    QTest::addColumn<bool>("downloadsChecked");
    QTest::addColumn<bool>("canCheck");
    QTest::addColumn<QString>("startupError");
    // Both preferences were switched on in an earlier run.
    QTest::newRow("installs itself") << true << false << true << true << true << true << QString();
    QTest::newRow("cannot install itself")
        << false << false << true << false << false << true << QString();
    QTest::newRow("no update feed")
        << false << true << true << false << false << false
        << QStringLiteral("Updates are unavailable: this build has no update feed.");
}

void TestSettingsView::updateRows()
{
    QFETCH(bool, asAppImage);
    QFETCH(bool, noFeed);
    QFETCH(bool, downloadsEnabled);
    QFETCH(bool, downloadsChecked);
    QFETCH(bool, canCheck);
    QFETCH(QString, startupError);
    m_updatePreferences.writeBool(UpdateEngine::automaticallyChecksKey, true);
    m_updatePreferences.writeBool(UpdateEngine::automaticallyDownloadsKey, true);
    makeView(asAppImage, noFeed);
    m_view->tabs().setCurrentIndex(2);

    QVERIFY(find<ToggleSwitch>("automatic-update-checks")->isChecked());
    auto *downloads = find<ToggleSwitch>("automatic-update-downloads");
    QCOMPARE(downloads->isEnabled(), downloadsEnabled);
    QCOMPARE(downloads->isChecked(), downloadsChecked);
    QCOMPARE(find<QPushButton>("settings-check-updates")->isEnabled(), canCheck);
    auto *error = find<TextLine>("updates-startup-error");
    QCOMPARE(error->isVisible(), !startupError.isEmpty());
    QCOMPARE(error->text(), startupError);

    // "Last checked" only once a check has happened.
    auto *lastChecked = find<QLabel>("last-checked");
    QVERIFY(!lastChecked->isVisible());
    if (canCheck) {
        Q_EMIT m_updater->engine().lastUpdateCheckDateChanged(
            QDateTime(QDate(2026, 11, 3), QTime(14, 5), QTimeZone::utc()));
        QVERIFY(lastChecked->isVisible());
        QVERIFY(lastChecked->text().contains(QStringLiteral("2026")));
    }
}

void TestSettingsView::refusedSwitchSpringsBack()
{
    makeView();
    m_view->tabs().setCurrentIndex(2);
    auto *checks = find<ToggleSwitch>("automatic-update-checks");
    QTest::mouseClick(checks, Qt::LeftButton);
    QVERIFY(m_updater->automaticallyChecksForUpdates());
    QVERIFY(checks->isChecked());

    // The updater stopped allowing self-installs after the switch was drawn.
    auto *downloads = find<ToggleSwitch>("automatic-update-downloads");
    downloads->setEnabled(true);
    QTest::mouseClick(downloads, Qt::LeftButton);
    QVERIFY(!m_updater->automaticallyDownloadsUpdates());
    QVERIFY(!downloads->isChecked());
}

void TestSettingsView::addSheetOpensAgain_data()
{
    QTest::addColumn<int>("howClosed");
    QTest::newRow("Done") << 0;
    QTest::newRow("Escape") << 1;
    QTest::newRow("a city chosen") << 2;
    QTest::newRow("window closed") << 3;
}

void TestSettingsView::addSheetOpensAgain()
{
    QFETCH(int, howClosed);
    makeView();
    auto *add = find<QPushButton>("add-city-button");
    for (int round = 0; round < 2; ++round) {
        QTest::mouseClick(add, Qt::LeftButton);
        QVERIFY(m_view->isShowingAdd());
        QDialog *sheet = m_view->addSheet();
        QVERIFY(sheet->isVisible());
        QCOMPARE(sheet->windowModality(), Qt::WindowModal);
        auto *field = sheet->findChild<QLineEdit *>(QStringLiteral("city-search"));
        QTRY_VERIFY(field->hasFocus());
        switch (howClosed) {
        case 0:
            QTest::mouseClick(sheet->findChild<QPushButton *>("add-city-close"), Qt::LeftButton);
            break;
        case 1:
            QTest::keyClick(field, Qt::Key_Escape);
            break;
        case 2:
            QTest::keyClicks(field,
                             round == 0 ? QStringLiteral("auckland") : QStringLiteral("lima"));
            QTest::keyClick(field, Qt::Key_Down);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            break;
        case 3:
            sheet->close();
            break;
        }
        QTRY_VERIFY(!m_view->isShowingAdd());
    }
    QCOMPARE(m_fixture->store->zones().size(), howClosed == 2 ? 4 : 2);
}

void TestSettingsView::quitZonara()
{
    makeView();
    m_view->tabs().setCurrentIndex(2);
    QSignalSpy quit(m_view.get(), &SettingsView::quitRequested);
    QTest::mouseClick(find<QPushButton>("quit-zonara"), Qt::LeftButton);
    QCOMPARE(quit.size(), 1);
}

void TestSettingsView::launchAtLogin()
{
    makeView();
    m_view->tabs().setCurrentIndex(2);
    auto *toggle = find<ToggleSwitch>("launch-at-login");
    auto *error = find<TextLine>("login-error");
    QVERIFY(!toggle->isChecked());

    QTest::mouseClick(toggle, Qt::LeftButton);
    QCOMPARE(LaunchAtLogin::status(), LoginItemStatus::enabled);
    QVERIFY(toggle->isChecked());
    QTest::mouseClick(toggle, Qt::LeftButton);
    QCOMPARE(LaunchAtLogin::status(), LoginItemStatus::notRegistered);
    QVERIFY(!toggle->isChecked());

    // A file where the autostart folder belongs: the switch ends on what is there.
    QVERIFY(QDir(m_config->filePath(QStringLiteral("autostart"))).removeRecursively());
    QFile blocker(m_config->filePath(QStringLiteral("autostart")));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    QTest::mouseClick(toggle, Qt::LeftButton);
    QVERIFY(!toggle->isChecked());
    QVERIFY(error->isVisible());
    QCOMPARE(error->text(), loginFailure);
    QCOMPARE(m_view->generalTab().launchError(), loginFailure);

    // Coming back to the window reads the status again but keeps the message.
    leaveAndComeBack();
    QVERIFY(error->isVisible());

    QVERIFY(blocker.remove());
    QTest::mouseClick(toggle, Qt::LeftButton);
    QVERIFY(toggle->isChecked());
    QVERIFY(!error->isVisible());
    QVERIFY(m_view->generalTab().launchError().isEmpty());
}

void TestSettingsView::loginEntryEditedElsewhere()
{
    makeView();
    auto *toggle = find<ToggleSwitch>("launch-at-login");
    QVERIFY(LaunchAtLogin::setEnabled(true));
    leaveAndComeBack();
    QVERIFY(toggle->isChecked());
    QCOMPARE(m_view->generalTab().loginStatus(), LoginItemStatus::enabled);

    const auto rewrite = [](const QByteArray &text) {
        QFile entry(LaunchAtLogin::entryPath());
        QVERIFY(entry.open(QIODevice::WriteOnly | QIODevice::Truncate));
        entry.write(text);
    };
    rewrite("[Desktop Entry]\nType=Application\nName=Zonara\nExec=sh\nHidden=true\n");
    leaveAndComeBack();
    QVERIFY(!toggle->isChecked());
    QCOMPARE(m_view->generalTab().loginStatus(), LoginItemStatus::notRegistered);

    rewrite("[Desktop Entry]\nType=Application\nName=Zonara\nExec=/gone/Zonara.AppImage\n");
    leaveAndComeBack();
    QVERIFY(!toggle->isChecked());
    QCOMPARE(m_view->generalTab().loginStatus(), LoginItemStatus::notFound);

    QVERIFY(QFile::remove(LaunchAtLogin::entryPath()));
    QVERIFY(LaunchAtLogin::setEnabled(true));
    leaveAndComeBack();
    QVERIFY(toggle->isChecked());
    QVERIFY(QFile::remove(LaunchAtLogin::entryPath()));
    leaveAndComeBack();
    QVERIFY(!toggle->isChecked());
    QCOMPARE(m_view->generalTab().loginStatus(), LoginItemStatus::notRegistered);
}

void TestSettingsView::workingHours()
{
    makeView();
    ZoneStore &store = *m_fixture->store;
    auto *toggle = find<ToggleSwitch>("working-hours");
    auto *from = find<QTimeEdit>("working-hours-from");
    auto *to = find<QTimeEdit>("working-hours-to");
    QVERIFY(!toggle->isChecked());
    QVERIFY(!from->isEnabled());

    QTest::mouseClick(toggle, Qt::LeftButton);
    QCOMPARE(store.workingHours(), WorkingHours::fromString(u"09:00-18:00"));
    QVERIFY(from->isEnabled());
    QVERIFY(to->isEnabled());

    // By keyboard: from the switch to the first field, one hour later.
    toggle->setFocus();
    QTest::keyClick(toggle, Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), from);
    QTest::keyClick(from, Qt::Key_Up);
    QCOMPARE(store.workingHours(), WorkingHours::fromString(u"10:00-18:00"));

    // Saved by another process.
    m_fixture->preferences.writeFromOutside(ZoneStore::workingHoursKey,
                                            QStringLiteral("22:00-06:30"));
    QCOMPARE(from->time(), QTime(22, 0));
    QCOMPARE(to->time(), QTime(6, 30));
    m_fixture->preferences.writeFromOutside(ZoneStore::workingHoursKey, QStringLiteral("off"));
    QVERIFY(!toggle->isChecked());
    QVERIFY(!to->isEnabled());

    // On again: the range it showed last.
    QTest::mouseClick(toggle, Qt::LeftButton);
    QCOMPARE(store.workingHours(), WorkingHours::fromString(u"22:00-06:30"));
}

QTEST_MAIN(TestSettingsView)
#include "tst_settingsview.moc"
