#pragma once

#include "UpdateUserDriver.h"

#include <QPointer>

#include <functional>
#include <memory>

class QDialog;
class QDialogButtonBox;
class QLabel;
class QProgressBar;

// The updater's own window: one small dialog whose content follows the
// session (checking, up to date, new version, downloading, done, error).
class UpdateDialog final : public UpdateUserDriver
{
    Q_OBJECT
public:
    explicit UpdateDialog(QObject *parent = nullptr);
    ~UpdateDialog() override;

    // Null until something has been shown.
    QDialog *window() const { return m_window.get(); }
    // Shows a saved file to the user; by default in the desktop's file manager.
    void setRevealHandler(std::function<void(const QString &path)> reveal);

    void showChecking() override;
    void showDownloading(const AppcastItem &item) override;
    void showProgress(qint64 received, qint64 total) override;
    void showUpToDate(const QString &currentVersion) override;
    void showUpdateFound(const AppcastItem &item, const QString &currentVersion,
                         bool installsInPlace) override;
    void showInstalled(const AppcastItem &item) override;
    void showSaved(const AppcastItem &item, const QString &path) override;
    void showError(const QString &message) override;
    void dismiss() override;

    // Opens the file manager on the file's folder with the file selected.
    static void revealInFileManager(const QString &path);

private:
    enum class Page { None, Busy, Offer, Done };

    void ensureWindow();
    void present(Page page, const QString &title, const QString &message);
    void addButton(const QString &text, const QString &objectName, std::function<void()> action,
                   bool isDefault = false);
    void onRejected();

    std::unique_ptr<QDialog> m_window;
    QLabel *m_title = nullptr;
    QLabel *m_message = nullptr;
    QProgressBar *m_progress = nullptr;
    QDialogButtonBox *m_buttons = nullptr;
    Page m_page = Page::None;
    std::function<void(const QString &)> m_reveal = revealInFileManager;
};
