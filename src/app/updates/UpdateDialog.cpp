#include "UpdateDialog.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

UpdateDialog::UpdateDialog(QObject *parent)
    : UpdateUserDriver(parent)
{}

UpdateDialog::~UpdateDialog() = default;

void UpdateDialog::setRevealHandler(std::function<void(const QString &)> reveal)
{
    m_reveal = std::move(reveal);
}

void UpdateDialog::ensureWindow()
{
    if (m_window)
        return;
    m_window = std::make_unique<QDialog>();
    m_window->setObjectName(QStringLiteral("update-dialog"));
    m_window->setWindowTitle(QStringLiteral("Software Update"));
    m_window->setMinimumWidth(420);

    m_title = new QLabel(m_window.get());
    m_title->setObjectName(QStringLiteral("update-title"));
    QFont titleFont = m_title->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.2);
    m_title->setFont(titleFont);
    m_title->setWordWrap(true);

    m_message = new QLabel(m_window.get());
    m_message->setObjectName(QStringLiteral("update-message"));
    m_message->setWordWrap(true);
    m_message->setTextFormat(Qt::RichText);
    m_message->setOpenExternalLinks(true);
    m_message->setTextInteractionFlags(Qt::TextBrowserInteraction);

    m_progress = new QProgressBar(m_window.get());
    m_progress->setObjectName(QStringLiteral("update-progress"));
    m_progress->setTextVisible(false);

    m_buttons = new QDialogButtonBox(m_window.get());

    auto *layout = new QVBoxLayout(m_window.get());
    layout->addWidget(m_title);
    layout->addWidget(m_message);
    layout->addWidget(m_progress);
    layout->addStretch();
    layout->addWidget(m_buttons);

    // Escape and the window's close button mean the gentlest answer.
    connect(m_window.get(), &QDialog::rejected, this, &UpdateDialog::onRejected);
}

void UpdateDialog::present(Page page, const QString &title, const QString &message)
{
    ensureWindow();
    m_page = page;
    m_title->setText(title);
    m_message->setText(message);
    m_message->setVisible(!message.isEmpty());
    m_progress->setVisible(page == Page::Busy);
    m_buttons->clear();
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

void UpdateDialog::addButton(const QString &text, const QString &objectName,
                             std::function<void()> action, bool isDefault)
{
    QPushButton *button = m_buttons->addButton(text, QDialogButtonBox::ActionRole);
    button->setObjectName(objectName);
    button->setDefault(isDefault);
    button->setAutoDefault(isDefault);
    connect(button, &QPushButton::clicked, this, std::move(action));
}

void UpdateDialog::onRejected()
{
    const Page page = m_page;
    m_page = Page::None;
    if (page == Page::Busy)
        Q_EMIT cancelRequested();
    else if (page == Page::Offer)
        Q_EMIT remindLaterRequested();
}

void UpdateDialog::dismiss()
{
    m_page = Page::None;
    if (m_window)
        m_window->hide();
}

void UpdateDialog::showChecking()
{
    present(Page::Busy, QStringLiteral("Checking for updates…"), QString());
    m_progress->setRange(0, 0);
    addButton(QStringLiteral("Cancel"), QStringLiteral("update-cancel"),
              [this] { Q_EMIT cancelRequested(); });
}

void UpdateDialog::showDownloading(const AppcastItem &item)
{
    present(Page::Busy, QStringLiteral("Downloading Zonara %1…").arg(item.displayVersion),
            QString());
    m_progress->setRange(0, 1000);
    m_progress->setValue(0);
    addButton(QStringLiteral("Cancel"), QStringLiteral("update-cancel"),
              [this] { Q_EMIT cancelRequested(); });
}

void UpdateDialog::showProgress(qint64 received, qint64 total)
{
    if (!m_progress || total <= 0)
        return;
    m_progress->setRange(0, 1000);
    m_progress->setValue(int(std::clamp<qint64>(received * 1000 / total, 0, 1000)));
}

void UpdateDialog::showUpToDate(const QString &currentVersion)
{
    present(Page::Done, QStringLiteral("You're up to date"),
            QStringLiteral("Zonara %1 is the newest version available.")
                .arg(currentVersion.toHtmlEscaped()));
    addButton(
        QStringLiteral("OK"), QStringLiteral("update-ok"), [this] { dismiss(); }, true);
}

void UpdateDialog::showUpdateFound(const AppcastItem &item, const QString &currentVersion,
                                   bool installsInPlace)
{
    QString message = QStringLiteral("Zonara %1 is available. You have %2.")
                          .arg(item.displayVersion.toHtmlEscaped(), currentVersion.toHtmlEscaped());
    if (!item.releaseNotesUrl.isEmpty()) {
        message += QStringLiteral(" <a href=\"%1\">Release notes</a>")
                       .arg(item.releaseNotesUrl.toString(QUrl::FullyEncoded).toHtmlEscaped());
    }
    if (!installsInPlace) {
        message += QStringLiteral("<p>Zonara cannot replace itself in this installation. It "
                                  "will save the verified update to your Downloads folder for "
                                  "you to install the way you installed Zonara.</p>");
    }
    present(Page::Offer, QStringLiteral("A new version of Zonara is available"), message);
    addButton(QStringLiteral("Skip this version"), QStringLiteral("update-skip"), [this] {
        dismiss();
        Q_EMIT skipRequested();
    });
    addButton(QStringLiteral("Remind me later"), QStringLiteral("update-remind-later"), [this] {
        dismiss();
        Q_EMIT remindLaterRequested();
    });
    addButton(
        installsInPlace ? QStringLiteral("Install") : QStringLiteral("Download"),
        QStringLiteral("update-install"), [this] { Q_EMIT installRequested(); }, true);
}

void UpdateDialog::showInstalled(const AppcastItem &item)
{
    present(Page::Done, QStringLiteral("Zonara %1 is installed").arg(item.displayVersion),
            QStringLiteral("The new version starts the next time Zonara starts."));
    addButton(QStringLiteral("Later"), QStringLiteral("update-later"), [this] { dismiss(); });
    addButton(
        QStringLiteral("Restart Now"), QStringLiteral("update-restart"),
        [this] {
            dismiss();
            Q_EMIT restartRequested();
        },
        true);
}

void UpdateDialog::showSaved(const AppcastItem &item, const QString &path)
{
    present(Page::Done, QStringLiteral("Zonara %1 is downloaded").arg(item.displayVersion),
            QStringLiteral("The verified update is saved as %1. Install it the way you "
                           "installed Zonara.")
                .arg(QDir::toNativeSeparators(path).toHtmlEscaped()));
    addButton(
        QStringLiteral("OK"), QStringLiteral("update-ok"), [this] { dismiss(); }, true);
    if (m_reveal)
        m_reveal(path);
}

void UpdateDialog::showError(const QString &message)
{
    present(Page::Done, QStringLiteral("The update did not work"), message.toHtmlEscaped());
    addButton(
        QStringLiteral("OK"), QStringLiteral("update-ok"), [this] { dismiss(); }, true);
}

void UpdateDialog::revealInFileManager(const QString &path)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(path).toString()} << QString();
    auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call));
    const QString folder = QFileInfo(path).absolutePath();
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [folder](QDBusPendingCallWatcher *finished) {
                         // Without a file manager service, open the folder instead.
                         if (finished->isError())
                             QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
                         finished->deleteLater();
                     });
}
