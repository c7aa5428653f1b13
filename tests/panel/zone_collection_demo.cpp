// Shows the zone list for screenshots (not a test): three 400-wide windows
// over one store of four cities: the first renaming the second city, the
// second confirming the removal of the third, the third at rest with the
// last city selected and identifiers shown, as the settings window has them.
//   ZONARA_DEMO_DARK=1   dark palette
//   ZONARA_DEMO_EMPTY=1  no cities: the placeholder
//   ZONARA_DEMO_QUIT_MS  quit after that many milliseconds
#include "PanelTestSupport.h"
#include "ZoneCard.h"
#include "ZoneCollectionView.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPalette>
#include <QStyleFactory>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

QPalette darkPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0x2b, 0x2b, 0x2d));
    palette.setColor(QPalette::WindowText, QColor(0xec, 0xec, 0xec));
    palette.setColor(QPalette::Base, QColor(0x36, 0x36, 0x39));
    palette.setColor(QPalette::AlternateBase, QColor(0x3a, 0x3a, 0x3d));
    palette.setColor(QPalette::Text, QColor(0xec, 0xec, 0xec));
    palette.setColor(QPalette::Button, QColor(0x45, 0x45, 0x48));
    palette.setColor(QPalette::ButtonText, QColor(0xec, 0xec, 0xec));
    palette.setColor(QPalette::ToolTipBase, QColor(0x45, 0x45, 0x48));
    palette.setColor(QPalette::ToolTipText, QColor(0xec, 0xec, 0xec));
    palette.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9a, 0x9e));
    palette.setColor(QPalette::Highlight, QColor(0x4a, 0x6e, 0xa8));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Light, QColor(0x55, 0x55, 0x58));
    palette.setColor(QPalette::Midlight, QColor(0x4a, 0x4a, 0x4d));
    palette.setColor(QPalette::Mid, QColor(0x30, 0x30, 0x32));
    palette.setColor(QPalette::Dark, QColor(0x20, 0x20, 0x22));
    palette.setColor(QPalette::Shadow, Qt::black);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x80, 0x80, 0x80));
    return palette;
}

ZoneCard *cardNamed(ZoneCollectionView &view, const QString &name)
{
    for (ZoneCard *card : view.findChildren<ZoneCard *>()) {
        if (card->state().row.zone.displayName() == name)
            return card;
    }
    return nullptr;
}

ZoneCollectionView *makeWindow(ZoneStore &store, Clock &clock, int x, const QString &title,
                               bool showsIdentifiers = false)
{
    auto *window = new QWidget;
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(title);
    window->setFixedSize(400, 480);
    window->move(x, 40);
    auto *layout = new QVBoxLayout(window);
    layout->setContentsMargins(0, 20, 0, 0);
    auto *view = new ZoneCollectionView(store, clock, showsIdentifiers, window);
    layout->addWidget(view);
    window->show();
    return view;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    if (qEnvironmentVariableIntValue("ZONARA_DEMO_DARK") == 1)
        QApplication::setPalette(darkPalette());

    const bool empty = qEnvironmentVariableIntValue("ZONARA_DEMO_EMPTY") == 1;
    QList<SavedZone> zones{makeZone(QStringLiteral("Europe/Stockholm"), std::nullopt, true),
                           makeZone(QStringLiteral("Asia/Tokyo")),
                           makeZone(QStringLiteral("America/New_York"), QStringLiteral("Office")),
                           makeZone(QStringLiteral("Europe/London"))};
    if (empty)
        zones.clear();
    PanelFixture fixture(zones, QDateTime(QDate(2026, 3, 2), QTime(13, 5), QTimeZone::utc()));

    ZoneCollectionView *renaming =
        makeWindow(*fixture.store, *fixture.clock, 20, QStringLiteral("Renaming"));
    ZoneCollectionView *confirming =
        makeWindow(*fixture.store, *fixture.clock, 440, QStringLiteral("Confirming"));
    ZoneCollectionView *resting =
        makeWindow(*fixture.store, *fixture.clock, 860, QStringLiteral("Resting"), true);

    QTimer::singleShot(200, renaming, [renaming] {
        // Selected first card, then the pencil of the second.
        if (ZoneCard *first = cardNamed(*renaming, QStringLiteral("Stockholm")))
            Q_EMIT first->pressed();
        if (ZoneCard *card = cardNamed(*renaming, QStringLiteral("Tokyo")))
            card->findChild<QToolButton *>(QStringLiteral("rename-button"))->click();
    });
    QTimer::singleShot(300, confirming, [confirming] {
        ZoneCard *card = cardNamed(*confirming, QStringLiteral("Office"));
        if (!card)
            return;
        QMenu *menu = confirming->openMenu(card->zoneId(), card->mapToGlobal(QPoint(40, 20)));
        for (QAction *action : menu->actions()) {
            if (action->text().startsWith(QStringLiteral("Remove city")))
                action->trigger();
        }
        menu->close();
    });
    QTimer::singleShot(400, resting, [resting] {
        if (ZoneCard *card = cardNamed(*resting, QStringLiteral("London")))
            Q_EMIT card->pressed();
    });
    if (const int quitAfter = qEnvironmentVariableIntValue("ZONARA_DEMO_QUIT_MS"); quitAfter > 0)
        QTimer::singleShot(quitAfter, &app, &QApplication::quit);
    return QApplication::exec();
}
