#include "AutostartEntry.h"
#include "LaunchAtLogin.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

Q_DECLARE_METATYPE(LoginItemStatus)

class TestLaunchAtLogin final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void registerAndUnregister();
    void execSurvivesQuoting_data();
    void execSurvivesQuoting();
    void entryEditedElsewhere_data();
    void entryEditedElsewhere();
    void failures();
    void loginItemsTool_data();
    void loginItemsTool();

private:
    void writeEntry(const QByteArray &text);

    std::unique_ptr<QTemporaryDir> m_config;
};

void TestLaunchAtLogin::init()
{
    m_config = std::make_unique<QTemporaryDir>();
    qputenv("XDG_CONFIG_HOME", m_config->path().toLocal8Bit());
    qunsetenv("APPIMAGE");
}

void TestLaunchAtLogin::writeEntry(const QByteArray &text)
{
    QVERIFY(QDir().mkpath(m_config->filePath(QStringLiteral("autostart"))));
    QFile entry(LaunchAtLogin::entryPath());
    QVERIFY(entry.open(QIODevice::WriteOnly));
    entry.write(text);
}

void TestLaunchAtLogin::registerAndUnregister()
{
    QCOMPARE(LaunchAtLogin::entryPath(),
             m_config->filePath(QStringLiteral("autostart/io.github.zonara.Zonara.desktop")));
    QCOMPARE(LaunchAtLogin::status(), LoginItemStatus::notRegistered);
    QVERIFY(LaunchAtLogin::setEnabled(true));
    QCOMPARE(LaunchAtLogin::status(), LoginItemStatus::enabled);

    // What the desktops read must be a valid entry that starts this very program.
    const QString validator =
        QStandardPaths::findExecutable(QStringLiteral("desktop-file-validate"));
    QVERIFY2(!validator.isEmpty(), "desktop-file-validate (desktop-file-utils) is not installed");
    QProcess validate;
    validate.start(validator, {LaunchAtLogin::entryPath()});
    QVERIFY(validate.waitForFinished());
    const QByteArray complaints = validate.readAll();
    QVERIFY2(validate.exitCode() == 0 && complaints.isEmpty(), complaints.constData());
    QFile entry(LaunchAtLogin::entryPath());
    QVERIFY(entry.open(QIODevice::ReadOnly));
    const auto keys = AutostartEntry::read(QString::fromUtf8(entry.readAll()));
    QCOMPARE(AutostartEntry::splitExec(keys.value(QStringLiteral("Exec"))),
             QStringList{QCoreApplication::applicationFilePath()});

    QVERIFY(LaunchAtLogin::setEnabled(false));
    QCOMPARE(LaunchAtLogin::status(), LoginItemStatus::notRegistered);
    QVERIFY(!QFile::exists(LaunchAtLogin::entryPath()));
    QVERIFY(LaunchAtLogin::setEnabled(false)); // nothing to remove is no failure
}

void TestLaunchAtLogin::execSurvivesQuoting_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << QStringLiteral("Zonara.AppImage");
    QTest::newRow("spaces") << QStringLiteral("My Apps/Zonara 0.2.AppImage");
    QTest::newRow("shell characters") << QStringLiteral("a\"b`c$d\\e'f;g&(h)");
    QTest::newRow("percent") << QStringLiteral("100%/%f Zonara");
    QTest::newRow("non-ASCII") << QStringLiteral("Programme/Zonära");
}

void TestLaunchAtLogin::execSurvivesQuoting()
{
    // An AppImage wherever the user keeps it: the entry must name exactly that file.
    QFETCH(QString, name);
    QTemporaryDir home;
    const QString path = home.filePath(name);
    QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
    QFile image(path);
    QVERIFY(image.open(QIODevice::WriteOnly));
    image.close();
    QVERIFY(image.setPermissions(image.permissions() | QFile::ExeOwner));
    qputenv("APPIMAGE", path.toLocal8Bit());

    QVERIFY(LaunchAtLogin::setEnabled(true));
    QFile entry(LaunchAtLogin::entryPath());
    QVERIFY(entry.open(QIODevice::ReadOnly));
    const auto keys = AutostartEntry::read(QString::fromUtf8(entry.readAll()));
    QCOMPARE(AutostartEntry::splitExec(keys.value(QStringLiteral("Exec"))), QStringList{path});
    QCOMPARE(LaunchAtLogin::status(), LoginItemStatus::enabled);

    // The AppImage moved away: the entry is left, but it starts nothing.
    QVERIFY(image.remove());
    QCOMPARE(LaunchAtLogin::status(), LoginItemStatus::notFound);
}

void TestLaunchAtLogin::entryEditedElsewhere_data()
{
    QTest::addColumn<QByteArray>("entry");
    QTest::addColumn<LoginItemStatus>("status");
    const QByteArray head = "[Desktop Entry]\nType=Application\nName=Zonara\n";
    QTest::newRow("hidden by the desktop") << head + "Exec=sh\nHidden=true\n"
                                           << LoginItemStatus::notRegistered;
    QTest::newRow("switched off in GNOME") << head + "Exec=sh\nX-GNOME-Autostart-enabled=false\n"
                                           << LoginItemStatus::notRegistered;
    QTest::newRow("program from PATH") << head + "Exec=sh -c true\n" << LoginItemStatus::enabled;
    QTest::newRow("program gone") << head + "Exec=/nonexistent/zonara\n"
                                  << LoginItemStatus::notFound;
    QTest::newRow("no program") << head << LoginItemStatus::notFound;
    QTest::newRow("broken quoting") << head + "Exec=\"/bin/sh\n" << LoginItemStatus::notFound;
    QTest::newRow("other group only")
        << QByteArray("[Desktop Action x]\nExec=sh\nHidden=true\n") << LoginItemStatus::notFound;
}

void TestLaunchAtLogin::entryEditedElsewhere()
{
    QFETCH(QByteArray, entry);
    QFETCH(LoginItemStatus, status);
    writeEntry(entry);
    QCOMPARE(LaunchAtLogin::status(), status);
    // Switching on again always leaves a working entry.
    QVERIFY(LaunchAtLogin::setEnabled(true));
    QCOMPARE(LaunchAtLogin::status(), LoginItemStatus::enabled);
}

void TestLaunchAtLogin::failures()
{
    // A file where the autostart folder belongs: nothing can be registered.
    QFile blocker(m_config->filePath(QStringLiteral("autostart")));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    QVERIFY(!LaunchAtLogin::setEnabled(true));
    QCOMPARE(LaunchAtLogin::status(), LoginItemStatus::notRegistered);
    QVERIFY(blocker.remove());

    // Something that cannot be removed where the entry belongs.
    QVERIFY(QDir().mkpath(LaunchAtLogin::entryPath() + QStringLiteral("/keep")));
    QVERIFY(!LaunchAtLogin::setEnabled(false));
    QVERIFY(!LaunchAtLogin::setEnabled(true));
}

void TestLaunchAtLogin::loginItemsTool_data()
{
    QTest::addColumn<QString>("desktop");
    QTest::addColumn<QStringList>("installed");
    QTest::addColumn<QStringList>("command");
    const QStringList everything = {"systemsettings", "kcmshell5", "xfce4-session-settings",
                                    "gnome-session-properties", "gnome-tweaks"};
    QTest::newRow("Plasma") << "KDE" << everything
                            << QStringList{"/usr/bin/systemsettings", "kcm_autostart"};
    QTest::newRow("Plasma without System Settings")
        << "KDE" << QStringList{"kcmshell5"} << QStringList{"/usr/bin/kcmshell5", "kcm_autostart"};
    QTest::newRow("Xfce") << "XFCE" << everything << QStringList{"/usr/bin/xfce4-session-settings"};
    QTest::newRow("Ubuntu's GNOME, derived name first")
        << "ubuntu:GNOME" << QStringList{"gnome-tweaks"} << QStringList{"/usr/bin/gnome-tweaks"};
    QTest::newRow("tool not installed") << "XFCE" << QStringList{"systemsettings"} << QStringList();
    QTest::newRow("unknown desktop") << "sway" << everything << QStringList();
}

void TestLaunchAtLogin::loginItemsTool()
{
    QFETCH(QString, desktop);
    QFETCH(QStringList, installed);
    QFETCH(QStringList, command);
    const auto find = [&](const QString &name) {
        return installed.contains(name) ? QStringLiteral("/usr/bin/") + name : QString();
    };
    QCOMPARE(LaunchAtLogin::loginItemsCommand(desktop, find), command);
}

QTEST_GUILESS_MAIN(TestLaunchAtLogin)
#include "tst_launchatlogin.moc"
