// Shows a TrayIcon for screenshots: the first argument is the line; every
// line read from standard input replaces it (an empty one shows the globe).
// Ends at the end of input.

#include "TrayIcon.h"

#include <QApplication>
#include <QDBusConnection>
#include <QSocketNotifier>
#include <QTextStream>

#include <unistd.h>

namespace {

void show(TrayIcon &tray, const QString &text)
{
    tray.setLine(text,
                 text.isEmpty() ? QStringLiteral("Zonara") : QStringLiteral("Zonara, ") + text);
}

const char *kindName(TrayIcon::Kind kind)
{
    switch (kind) {
    case TrayIcon::Kind::StatusNotifierItem:
        return "StatusNotifierItem";
    case TrayIcon::Kind::XEmbed:
        return "XEmbed";
    case TrayIcon::Kind::None:
        break;
    }
    return "None";
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QTextStream out(stdout);
    TrayIcon tray(QDBusConnection::sessionBus());
    QObject::connect(&tray, &TrayIcon::kindChanged, &app,
                     [&] { out << "kind " << kindName(tray.kind()) << Qt::endl; });
    QObject::connect(&tray, &TrayIcon::activated, &app, [&](const QPoint &p) {
        out << "activated " << p.x() << ' ' << p.y() << Qt::endl;
    });
    QObject::connect(&tray, &TrayIcon::quitRequested, &app, &QApplication::quit);
    out << "kind " << kindName(tray.kind()) << Qt::endl;
    show(tray, app.arguments().value(1));

    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QByteArray pending;
    QObject::connect(&input, &QSocketNotifier::activated, &app, [&] {
        char buffer[512];
        const ssize_t size = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (size <= 0) {
            input.setEnabled(false);
            app.quit();
            return;
        }
        pending.append(buffer, size);
        qsizetype end;
        while ((end = pending.indexOf('\n')) >= 0) {
            const QString text = QString::fromUtf8(pending.left(end));
            pending.remove(0, end + 1);
            show(tray, text);
            out << "line \"" << text << '"' << Qt::endl;
        }
    });
    return app.exec();
}
