#include "UpdateDialog.h"

#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {

AppcastItem release()
{
    AppcastItem item;
    item.version = QStringLiteral("1.2.0");
    item.displayVersion = QStringLiteral("1.2");
    item.releaseNotesUrl = QUrl(QStringLiteral("https://zonara.example/notes?v=1.2&lang=en"));
    return item;
}

enum class Show { Checking, Downloading, UpToDate, Offer, OfferDownload, Installed, Saved, Error };

} // namespace

Q_DECLARE_METATYPE(Show)

class TestUpdateDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void pages_data();
    void pages();
    void buttons_data();
    void buttons();
    void messageText();

private:
    void show(Show what);
    QStringList buttonTexts() const;
    QLabel *message() const { return m_dialog->window()->findChild<QLabel *>("update-message"); }

    std::unique_ptr<UpdateDialog> m_dialog;
    QStringList m_revealed;
};

void TestUpdateDialog::init()
{
    m_dialog = std::make_unique<UpdateDialog>();
    m_revealed.clear();
    m_dialog->setRevealHandler([this](const QString &path) { m_revealed << path; });
}

void TestUpdateDialog::show(Show what)
{
    switch (what) {
    case Show::Checking:
        return m_dialog->showChecking();
    case Show::Downloading:
        return m_dialog->showDownloading(release());
    case Show::UpToDate:
        return m_dialog->showUpToDate(QStringLiteral("0.1.0"));
    case Show::Offer:
        return m_dialog->showUpdateFound(release(), QStringLiteral("0.1.0"), true);
    case Show::OfferDownload:
        return m_dialog->showUpdateFound(release(), QStringLiteral("0.1.0"), false);
    case Show::Installed:
        return m_dialog->showInstalled(release());
    case Show::Saved:
        return m_dialog->showSaved(release(), QStringLiteral("/tmp/Zonara-1.2.AppImage"));
    case Show::Error:
        return m_dialog->showError(QStringLiteral("The update feed lists no releases."));
    }
}

QStringList TestUpdateDialog::buttonTexts() const
{
    QStringList texts;
    for (QPushButton *button : m_dialog->window()->findChildren<QPushButton *>()) {
        if (button->isVisibleTo(m_dialog->window()))
            texts << button->objectName() + u'=' + button->text();
    }
    texts.sort();
    return texts;
}

void TestUpdateDialog::pages_data()
{
    QTest::addColumn<Show>("what");
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("progress");
    QTest::addColumn<QStringList>("buttons");

    QTest::newRow("checking") << Show::Checking << "Checking for updates…" << true
                              << QStringList{"update-cancel=Cancel"};
    QTest::newRow("downloading") << Show::Downloading << "Downloading Zonara 1.2…" << true
                                 << QStringList{"update-cancel=Cancel"};
    QTest::newRow("up to date") << Show::UpToDate << "You're up to date" << false
                                << QStringList{"update-ok=OK"};
    QTest::newRow("found, installs in place")
        << Show::Offer << "A new version of Zonara is available" << false
        << QStringList{"update-install=Install", "update-remind-later=Remind me later",
                       "update-skip=Skip this version"};
    QTest::newRow("found, downloads")
        << Show::OfferDownload << "A new version of Zonara is available" << false
        << QStringList{"update-install=Download", "update-remind-later=Remind me later",
                       "update-skip=Skip this version"};
    QTest::newRow("installed") << Show::Installed << "Zonara 1.2 is installed" << false
                               << QStringList{"update-later=Later", "update-restart=Restart Now"};
    QTest::newRow("saved") << Show::Saved << "Zonara 1.2 is downloaded" << false
                           << QStringList{"update-ok=OK"};
    QTest::newRow("error") << Show::Error << "The update did not work" << false
                           << QStringList{"update-ok=OK"};
}

void TestUpdateDialog::pages()
{
    QFETCH(Show, what);
    QFETCH(QString, title);
    QFETCH(bool, progress);
    QFETCH(QStringList, buttons);
    // Each page replaces whatever the previous one showed.
    m_dialog->showUpdateFound(release(), QStringLiteral("0.1.0"), true);
    show(what);
    QVERIFY(m_dialog->window()->isVisible());
    QCOMPARE(m_dialog->window()->findChild<QLabel *>("update-title")->text(), title);
    QCOMPARE(m_dialog->window()
                 ->findChild<QProgressBar *>("update-progress")
                 ->isVisibleTo(m_dialog->window()),
             progress);
    QCOMPARE(buttonTexts(), buttons);
    // Only a saved download is shown in the file manager.
    const QString saved = QStringLiteral("/tmp/Zonara-1.2.AppImage");
    QCOMPARE(m_revealed, what == Show::Saved ? QStringList{saved} : QStringList());
    QCOMPARE(message()->text().contains(saved), what == Show::Saved);
}

void TestUpdateDialog::buttons_data()
{
    QTest::addColumn<Show>("what");
    QTest::addColumn<QString>("button"); // empty: the window is closed with Escape
    QTest::addColumn<QString>("request");
    QTest::addColumn<bool>("staysOpen");

    QTest::newRow("install") << Show::Offer << "update-install"
                             << "install" << true;
    QTest::newRow("skip") << Show::Offer << "update-skip"
                          << "skip" << false;
    QTest::newRow("remind me later") << Show::OfferDownload << "update-remind-later"
                                     << "remind" << false;
    QTest::newRow("escape on an offer is remind me later")
        << Show::Offer << QString() << "remind" << false;
    QTest::newRow("cancel checking") << Show::Checking << "update-cancel"
                                     << "cancel" << true;
    QTest::newRow("escape while downloading cancels")
        << Show::Downloading << QString() << "cancel" << false;
    QTest::newRow("restart") << Show::Installed << "update-restart"
                             << "restart" << false;
    QTest::newRow("escape when up to date asks nothing")
        << Show::UpToDate << QString() << QString() << false;
}

void TestUpdateDialog::buttons()
{
    QFETCH(Show, what);
    QFETCH(QString, button);
    QFETCH(QString, request);
    QFETCH(bool, staysOpen);
    QStringList requests;
    const auto record = [&](const QString &name) {
        return [&requests, name] { requests << name; };
    };
    connect(m_dialog.get(), &UpdateUserDriver::installRequested, this, record("install"));
    connect(m_dialog.get(), &UpdateUserDriver::skipRequested, this, record("skip"));
    connect(m_dialog.get(), &UpdateUserDriver::remindLaterRequested, this, record("remind"));
    connect(m_dialog.get(), &UpdateUserDriver::cancelRequested, this, record("cancel"));
    connect(m_dialog.get(), &UpdateUserDriver::restartRequested, this, record("restart"));

    show(what);
    if (button.isEmpty())
        QTest::keyClick(m_dialog->window(), Qt::Key_Escape);
    else
        QTest::mouseClick(m_dialog->window()->findChild<QPushButton *>(button), Qt::LeftButton);
    QCOMPARE(requests, request.isEmpty() ? QStringList() : QStringList{request});
    QCOMPARE(m_dialog->window()->isVisible(), staysOpen);
}

void TestUpdateDialog::messageText()
{
    m_dialog->showUpdateFound(release(), QStringLiteral("0.1.0"), true);
    QVERIFY(message()->openExternalLinks());
    QVERIFY2(message()->text().contains(
                 "<a href=\"https://zonara.example/notes?v=1.2&amp;lang=en\">Release notes</a>"),
             qPrintable(message()->text()));
    AppcastItem withoutNotes = release();
    withoutNotes.releaseNotesUrl.clear();
    m_dialog->showUpdateFound(withoutNotes, QStringLiteral("0.1.0"), true);
    QVERIFY(!message()->text().contains("<a "));
    // Errors can hold file names and server text, never markup.
    m_dialog->showError(QStringLiteral("Could not save in <b>/tmp</b> & elsewhere."));
    QCOMPARE(message()->text(),
             QStringLiteral("Could not save in &lt;b&gt;/tmp&lt;/b&gt; &amp; elsewhere."));
}

QTEST_MAIN(TestUpdateDialog)
#include "tst_updatedialog.moc"
