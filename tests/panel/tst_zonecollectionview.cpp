#include "AppStyle.h"
#include "InlineEditButton.h"
#include "NameField.h"
#include "PanelTestSupport.h"
#include "TextLine.h"
#include "ZoneCard.h"
#include "ZoneCardStack.h"
#include "ZoneCollectionView.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int timeout = 5000;

QList<SavedZone> fourZones()
{
    return {makeZone(QStringLiteral("Europe/Stockholm"), std::nullopt, true),
            makeZone(QStringLiteral("Asia/Tokyo")),
            makeZone(QStringLiteral("America/New_York"), QStringLiteral("Office")),
            makeZone(QStringLiteral("Europe/London"))};
}

// The panel's list in a 400 by 480 window, at 00:30 UTC (09:30 in Tokyo).
struct ListWindow
{
    explicit ListWindow(const QList<SavedZone> &zones = fourZones(), bool showsIdentifiers = false,
                        bool reduceMotion = true)
        : panel(zones)
    {
        auto *layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 0, 0, 0);
        view = new ZoneCollectionView(*panel.store, *panel.clock, showsIdentifiers, &window);
        view->setReduceMotion(reduceMotion);
        layout->addWidget(view);
        window.resize(400, 480);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }

    // The cards from top to bottom.
    QList<ZoneCard *> cards() const
    {
        QList<ZoneCard *> found;
        for (ZoneCard *card : view->findChildren<ZoneCard *>()) {
            if (card->isVisible())
                found.append(card);
        }
        std::sort(found.begin(), found.end(),
                  [](ZoneCard *a, ZoneCard *b) { return a->y() < b->y(); });
        return found;
    }
    ZoneCard *card(const QString &name) const
    {
        for (ZoneCard *card : cards()) {
            if (card->state().row.zone.displayName() == name)
                return card;
        }
        return nullptr;
    }
    QStringList visibleNames() const
    {
        QStringList names;
        for (ZoneCard *card : cards())
            names.append(card->state().row.zone.displayName());
        return names;
    }
    template<typename T> static T *in(ZoneCard *card, const QString &name)
    {
        return card->findChild<T *>(name);
    }
    NameField *field() const
    {
        for (NameField *field : view->findChildren<NameField *>()) {
            if (field->isVisible())
                return field;
        }
        return nullptr;
    }
    ZoneCardStack *stack() const { return view->findChild<ZoneCardStack *>(); }

    void doubleClickName(const QString &name)
    {
        auto *label = in<TextLine>(card(name), QStringLiteral("zone-name"));
        QTest::mousePress(label, Qt::LeftButton);
        QTest::mouseRelease(label, Qt::LeftButton);
        QTest::mousePress(label, Qt::LeftButton);
        QTest::mouseDClick(label, Qt::LeftButton);
        QTest::mouseRelease(label, Qt::LeftButton);
    }
    // Opens the rename of a zone with a double-click, then types a new name.
    [[nodiscard]] bool renameTo(const QString &name, const QString &typed)
    {
        doubleClickName(name);
        if (!QTest::qWaitFor([this] { return field() && field()->hasFocus(); }, timeout))
            return false;
        if (field()->text() != name || field()->selectedText() != name)
            return false;
        QTest::keyClicks(field(), typed);
        return true;
    }
    QMenu *menuOf(const QString &name, QContextMenuEvent::Reason reason = QContextMenuEvent::Mouse)
    {
        ZoneCard *target = card(name);
        const QPoint at(30, 20);
        QContextMenuEvent event(reason, at, target->mapToGlobal(at));
        QApplication::sendEvent(target, &event);
        return view->findChild<QMenu *>(QStringLiteral("zone-menu"));
    }
    static QAction *action(QMenu *menu, const QString &text)
    {
        for (QAction *action : menu->actions()) {
            if (action->text() == text)
                return action;
        }
        return nullptr;
    }
    [[nodiscard]] static bool trigger(QMenu *menu, const QString &text)
    {
        QAction *found = menu ? action(menu, text) : nullptr;
        if (!found || !found->isEnabled())
            return false;
        found->trigger();
        return true;
    }
    void closeMenus()
    {
        for (QMenu *menu : view->findChildren<QMenu *>())
            menu->close();
        QTRY_VERIFY_WITH_TIMEOUT(!view->findChild<QMenu *>(), timeout);
    }

    PanelFixture panel;
    QWidget window;
    ZoneCollectionView *view;
};

InlineEditButton *inlineButton(ZoneCard *card, const QString &title)
{
    for (InlineEditButton *button : card->findChildren<InlineEditButton *>()) {
        if (button->title() == title)
            return button;
    }
    return nullptr;
}

bool containsColour(const QImage &image, const QColor &colour)
{
    const QImage pixels = image.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < pixels.height(); ++y) {
        for (int x = 0; x < pixels.width(); ++x) {
            if (QColor(pixels.pixel(x, y)) == colour)
                return true;
        }
    }
    return false;
}

} // namespace

class TestZoneCollectionView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cardsInStoreOrder();
    void renameSavedOnceByReturn();
    void renameSavedOnceByClickElsewhere();
    void renameSavedOnceBySaveButton();
    void renameDiscarded_data();
    void renameDiscarded();
    void doubleClickOnAnotherCardSavesTheFirst();
    void removeCityDiscardsTheRenameAndConfirms();
    void confirmationCancelKeepsTheCity();
    void dragThirdCardToTheTop();
    void noDragWhileConfirming();
    void menuEnabledStatesAtTheEnds_data();
    void menuEnabledStatesAtTheEnds();
    void menuPinAndCityName();
    void copyTimePutsTheTextOnTheClipboard();
    void copyTimeOfAnUnknownZoneKeepsTheClipboard();
    void hoverLeavingOntoANeighbourKeepsItLit();
    void realPointerHover();
    void clockTickKeepsTheCards();
    void unknownIdentifierShowsDashes();
    void emptyListShowsThePlaceholder();
    void keyboardSelectsMovesRenamesAndOpensTheMenu();
    void accessibleActions();
    void tabReachesEveryButton();
    void leavingSavesAndDropsTheConfirmation();
    void identifiersOnlyWhenAsked();
    void reduceMotionIsReadFromTheEnvironment();
    void motionUnlessReduced_data();
    void motionUnlessReduced();
    void noNativeSelectionHighlight();
    void highlightRecoloursWithThePalette();
};

void TestZoneCollectionView::cardsInStoreOrder()
{
    ListWindow w;
    QCOMPARE(w.visibleNames(), (QStringList{"Stockholm", "Tokyo", "Office", "London"}));
    const QList<ZoneCard *> cards = w.cards();
    // 4 px above the first card, 8 between cards, 20 from both sides.
    QCOMPARE(w.cards().constFirst()->mapTo(w.view, QPoint()).y(), 4);
    QCOMPARE(cards.at(1)->y() - cards.at(0)->geometry().bottom() - 1, 8);
    QCOMPARE(cards.at(0)->x(), 20);
    QCOMPARE(cards.at(0)->width(), w.view->width() - 40);
    QVERIFY(!w.view->findChild<QWidget *>(QStringLiteral("empty-placeholder"))->isVisible());
}

void TestZoneCollectionView::renameSavedOnceByReturn()
{
    ListWindow w;
    QSignalSpy zones(w.panel.store.get(), &ZoneStore::zonesChanged);
    QVERIFY(w.renameTo(QStringLiteral("Tokyo"), QStringLiteral("Team")));
    QTest::keyClick(w.field(), Qt::Key_Return);
    QCOMPARE(zones.count(), 1);
    QCOMPARE(w.panel.store->zones().at(1).customLabel, std::optional<QString>("Team"));
    QTRY_VERIFY_WITH_TIMEOUT(!w.field(), timeout);
    QVERIFY(w.card(QStringLiteral("Team")));
    // The keyboard goes back to the list, not to some button.
    QVERIFY(w.stack()->hasFocus());
}

void TestZoneCollectionView::renameSavedOnceByClickElsewhere()
{
    ListWindow w;
    QSignalSpy zones(w.panel.store.get(), &ZoneStore::zonesChanged);
    QVERIFY(w.renameTo(QStringLiteral("Tokyo"), QStringLiteral("Team")));
    auto *subtitle =
        ListWindow::in<TextLine>(w.card(QStringLiteral("London")), QStringLiteral("zone-subtitle"));
    QTest::mouseClick(subtitle, Qt::LeftButton);
    QCOMPARE(zones.count(), 1);
    QCOMPARE(w.panel.store->zones().at(1).customLabel, std::optional<QString>("Team"));
    QTRY_VERIFY_WITH_TIMEOUT(!w.field(), timeout);
    // The click also did its own work: it selected London.
    QCOMPARE(w.view->state().selectedId(), w.panel.id(3));
}

void TestZoneCollectionView::renameSavedOnceBySaveButton()
{
    ListWindow w;
    QSignalSpy zones(w.panel.store.get(), &ZoneStore::zonesChanged);
    QVERIFY(w.renameTo(QStringLiteral("Tokyo"), QStringLiteral("Team")));
    QTest::mouseClick(inlineButton(w.card(QStringLiteral("Tokyo")), "Save name (Return)"),
                      Qt::LeftButton);
    QCOMPARE(zones.count(), 1);
    QCOMPARE(w.panel.store->zones().at(1).customLabel, std::optional<QString>("Team"));
    QTRY_VERIFY_WITH_TIMEOUT(!w.field(), timeout);
}

void TestZoneCollectionView::renameDiscarded_data()
{
    QTest::addColumn<bool>("byButton");
    QTest::newRow("Escape") << false;
    QTest::newRow("Cancel button") << true;
}

void TestZoneCollectionView::renameDiscarded()
{
    QFETCH(bool, byButton);
    ListWindow w;
    QSignalSpy zones(w.panel.store.get(), &ZoneStore::zonesChanged);
    QVERIFY(w.renameTo(QStringLiteral("Office"), QStringLiteral("Elsewhere")));
    if (byButton)
        QTest::mouseClick(inlineButton(w.card(QStringLiteral("Office")), "Cancel rename (Escape)"),
                          Qt::LeftButton);
    else
        QTest::keyClick(w.field(), Qt::Key_Escape);
    QTRY_VERIFY_WITH_TIMEOUT(!w.field(), timeout);
    // Nothing stored, and no click elsewhere later saves the abandoned draft.
    QTest::mouseClick(ListWindow::in<TextLine>(w.card(QStringLiteral("London")), "zone-subtitle"),
                      Qt::LeftButton);
    QCOMPARE(zones.count(), 0);
    QCOMPARE(w.panel.store->zones().at(2).customLabel, std::optional<QString>("Office"));
    QCOMPARE(w.view->state().editingId(), std::nullopt);
}

void TestZoneCollectionView::doubleClickOnAnotherCardSavesTheFirst()
{
    ListWindow w;
    QVERIFY(w.renameTo(QStringLiteral("Tokyo"), QStringLiteral("Team")));
    w.doubleClickName(QStringLiteral("London"));
    QCOMPARE(w.panel.store->zones().at(1).customLabel, std::optional<QString>("Team"));
    QCOMPARE(w.view->state().editingId(), w.panel.id(3));
    QTRY_VERIFY_WITH_TIMEOUT(w.field() && w.field()->hasFocus(), timeout);
    QCOMPARE(w.field()->text(), QStringLiteral("London"));
    QVERIFY(w.card(QStringLiteral("London"))->isAncestorOf(w.field()));
}

void TestZoneCollectionView::removeCityDiscardsTheRenameAndConfirms()
{
    ListWindow w;
    QVERIFY(w.renameTo(QStringLiteral("Tokyo"), QStringLiteral("Team")));
    // From the keyboard: a mouse press elsewhere would already have saved the rename.
    QMenu *menu = w.menuOf(QStringLiteral("London"), QContextMenuEvent::Keyboard);
    QVERIFY(menu);
    QVERIFY(ListWindow::trigger(menu, QStringLiteral("Remove city\u2026")));
    w.closeMenus();
    QCOMPARE(w.panel.store->zones().at(1).customLabel, std::nullopt);
    QTRY_VERIFY_WITH_TIMEOUT(!w.field(), timeout);
    ZoneCard *london = w.card(QStringLiteral("London"));
    auto *confirmation = ListWindow::in<QWidget>(london, QStringLiteral("remove-confirmation"));
    QVERIFY(confirmation->isVisible());
    QCOMPARE(ListWindow::in<TextLine>(london, QStringLiteral("remove-question"))->text(),
             QStringLiteral("Remove this city?"));
    // Only that card asks.
    QVERIFY(!ListWindow::in<QWidget>(w.card(QStringLiteral("Tokyo")), "remove-confirmation")
                 ->isVisible());

    QTest::mouseClick(ListWindow::in<QPushButton>(london, QStringLiteral("remove-confirm")),
                      Qt::LeftButton);
    QCOMPARE(w.panel.displayNames(), (QStringList{"Stockholm", "Tokyo", "Office"}));
    QTRY_COMPARE_WITH_TIMEOUT(w.visibleNames(), (QStringList{"Stockholm", "Tokyo", "Office"}),
                              timeout);
    QCOMPARE(w.view->state().removingZone(), std::nullopt);
}

void TestZoneCollectionView::confirmationCancelKeepsTheCity()
{
    ListWindow w;
    QMenu *menu = w.menuOf(QStringLiteral("Office"));
    QVERIFY(ListWindow::trigger(menu, QStringLiteral("Remove city\u2026")));
    w.closeMenus();
    ZoneCard *office = w.card(QStringLiteral("Office"));
    const int grown = office->height();
    QTest::mouseClick(ListWindow::in<QPushButton>(office, QStringLiteral("remove-cancel")),
                      Qt::LeftButton);
    QCOMPARE(w.panel.store->zones().size(), 4);
    QVERIFY(!ListWindow::in<QWidget>(office, QStringLiteral("remove-confirmation"))->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(office->height() < grown, timeout);
}

void TestZoneCollectionView::dragThirdCardToTheTop()
{
    ListWindow w;
    QSignalSpy reorders(w.stack(), &ZoneCardStack::reorderRequested);
    const QList<ZoneCard *> cards = w.cards();
    ZoneCard *third = cards.at(2);
    const QUuid thirdId = third->zoneId();

    // Press on the third card's subtitle, then drag to the top half of the first card.
    auto *grip = ListWindow::in<TextLine>(third, QStringLiteral("zone-subtitle"));
    QTest::mousePress(grip, Qt::LeftButton);
    const QPoint start = grip->mapTo(third, grip->rect().center());
    QTest::mouseMove(third, start + QPoint(0, -10));
    QVERIFY(w.stack()->isDragging());
    const QPoint overFirst =
        third->mapFrom(w.stack(), cards.at(0)->geometry().topLeft() + QPoint(40, 8));
    QTest::mouseMove(third, overFirst);
    QCOMPARE(w.stack()->dropDestination(), 0);

    // The drop line is drawn in the accent colour above the first card.
    const std::optional<int> lineY = w.stack()->dropIndicatorY();
    QVERIFY(lineY && *lineY < cards.at(0)->y());
    const QImage shot = w.stack()->grab().toImage();
    QCOMPARE(shot.pixelColor(w.stack()->width() / 2, *lineY).rgb(),
             AppStyle::accent(w.stack()->palette()).rgb());

    QTest::mouseRelease(third, Qt::LeftButton, Qt::NoModifier, overFirst);
    QCOMPARE(reorders.count(), 1);
    QCOMPARE(reorders.at(0).at(0).toInt(), 2);
    QCOMPARE(reorders.at(0).at(1).toInt(), 0);
    // moveZones([Office], before: Stockholm).
    QCOMPARE(w.panel.displayNames(), (QStringList{"Office", "Stockholm", "Tokyo", "London"}));
    QCOMPARE(w.view->state().selectedId(), thirdId);
    QVERIFY(third->state().isHighlighted);
    QTRY_COMPARE_WITH_TIMEOUT(w.visibleNames(),
                              (QStringList{"Office", "Stockholm", "Tokyo", "London"}), timeout);
    QVERIFY(!w.stack()->dropIndicatorY());
}

void TestZoneCollectionView::noDragWhileConfirming()
{
    ListWindow w;
    const auto handlesShown = [&w] {
        for (ZoneCard *card : w.cards()) {
            const QImage image = ListWindow::in<QLabel>(card, QStringLiteral("zone-handle"))
                                     ->pixmap()
                                     .toImage()
                                     .convertToFormat(QImage::Format_ARGB32);
            for (int y = 0; y < image.height(); ++y) {
                if (qAlpha(image.pixel(image.width() / 2, y)) > 0)
                    return true;
            }
        }
        return false;
    };
    QVERIFY(handlesShown());
    QVERIFY(w.renameTo(QStringLiteral("Stockholm"), QStringLiteral("Home")));
    QVERIFY(!handlesShown());
    QTest::keyClick(w.field(), Qt::Key_Escape);
    QTRY_VERIFY_WITH_TIMEOUT(handlesShown(), timeout);

    QMenu *menu = w.menuOf(QStringLiteral("Tokyo"));
    QVERIFY(ListWindow::trigger(menu, QStringLiteral("Remove city\u2026")));
    w.closeMenus();
    QVERIFY(!handlesShown());
    QSignalSpy reorders(w.stack(), &ZoneCardStack::reorderRequested);
    ZoneCard *london = w.card(QStringLiteral("London"));
    const auto dragUp = [&] {
        auto *grip = ListWindow::in<TextLine>(london, QStringLiteral("zone-subtitle"));
        const QPoint start = grip->mapTo(london, grip->rect().center());
        QTest::mousePress(grip, Qt::LeftButton);
        QTest::mouseMove(london, start + QPoint(0, -20));
        const bool dragging = w.stack()->isDragging();
        const QPoint top = london->mapFrom(w.stack(), QPoint(40, 6));
        QTest::mouseMove(london, top);
        QTest::mouseRelease(london, Qt::LeftButton, Qt::NoModifier, top);
        return dragging;
    };
    QVERIFY(!dragUp());
    QCOMPARE(reorders.count(), 0);
    QCOMPARE(w.panel.displayNames(), (QStringList{"Stockholm", "Tokyo", "Office", "London"}));

    // Once the confirmation is closed, dragging works again.
    QTest::mouseClick(ListWindow::in<QPushButton>(w.card(QStringLiteral("Tokyo")), "remove-cancel"),
                      Qt::LeftButton);
    QVERIFY(dragUp());
    QCOMPARE(reorders.count(), 1);
    QCOMPARE(w.panel.displayNames(), (QStringList{"London", "Stockholm", "Tokyo", "Office"}));
}

void TestZoneCollectionView::menuEnabledStatesAtTheEnds_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("canMoveUp");
    QTest::addColumn<bool>("canMoveDown");
    QTest::newRow("first") << "Stockholm" << false << true;
    QTest::newRow("middle") << "Tokyo" << true << true;
    QTest::newRow("last") << "London" << true << false;
}

void TestZoneCollectionView::menuEnabledStatesAtTheEnds()
{
    QFETCH(QString, name);
    QFETCH(bool, canMoveUp);
    QFETCH(bool, canMoveDown);
    ListWindow w;
    QMenu *menu = w.menuOf(name);
    QVERIFY(menu);
    QTRY_VERIFY_WITH_TIMEOUT(menu->isVisible(), timeout);
    for (const char *text : {"Rename", "Move up", "Move down"})
        QVERIFY2(ListWindow::action(menu, QLatin1String(text)), text);
    QCOMPARE(ListWindow::action(menu, QStringLiteral("Move up"))->isEnabled(), canMoveUp);
    QCOMPARE(ListWindow::action(menu, QStringLiteral("Move down"))->isEnabled(), canMoveDown);
    QVERIFY(ListWindow::action(menu, QStringLiteral("Rename"))->isEnabled());
    QVERIFY(!ListWindow::action(menu, QStringLiteral("Rename"))->icon().isNull());
    if (canMoveUp) {
        QVERIFY(ListWindow::trigger(menu, QStringLiteral("Move up")));
        QCOMPARE(w.panel.displayNames().indexOf(name),
                 QStringList({"Stockholm", "Tokyo", "Office", "London"}).indexOf(name) - 1);
        QCOMPARE(w.view->state().selectedId(), w.card(name)->zoneId());
    }
    w.closeMenus();
}

void TestZoneCollectionView::menuPinAndCityName()
{
    ListWindow w;
    QMenu *menu = w.menuOf(QStringLiteral("Stockholm"));
    QVERIFY(!ListWindow::action(menu, QStringLiteral("Use city name")));
    QVERIFY(ListWindow::trigger(menu, QStringLiteral("Unpin from menu bar")));
    w.closeMenus();
    QVERIFY(!w.panel.store->zones().at(0).isPinned);

    menu = w.menuOf(QStringLiteral("Office"));
    QVERIFY(ListWindow::action(menu, QStringLiteral("Pin to menu bar")));
    QVERIFY(ListWindow::trigger(menu, QStringLiteral("Use city name")));
    w.closeMenus();
    QCOMPARE(w.panel.store->zones().at(2).customLabel, std::nullopt);
    QVERIFY(w.card(QStringLiteral("New York")));
}

void TestZoneCollectionView::copyTimePutsTheTextOnTheClipboard()
{
    ListWindow w;
    QMenu *menu = w.menuOf(QStringLiteral("Tokyo"));
    QVERIFY(ListWindow::trigger(menu, QStringLiteral("Copy time")));
    w.closeMenus();
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("Tokyo 09:30"));

    w.panel.store->setFormat(MenuBarFormat::labelTime12);
    w.panel.clock->setNow(QDateTime(QDate(2026, 3, 2), QTime(12, 5), QTimeZone::utc()));
    menu = w.menuOf(QStringLiteral("Tokyo"));
    QVERIFY(ListWindow::trigger(menu, QStringLiteral("Copy time")));
    w.closeMenus();
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("Tokyo 9:05p"));
}

void TestZoneCollectionView::copyTimeOfAnUnknownZoneKeepsTheClipboard()
{
    ListWindow w({makeZone(QStringLiteral("Mars/Olympus_Mons"))});
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    QMenu *menu = w.menuOf(QStringLiteral("Olympus Mons"));
    QVERIFY(ListWindow::trigger(menu, QStringLiteral("Copy time")));
    w.closeMenus();
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("before"));
}

void TestZoneCollectionView::hoverLeavingOntoANeighbourKeepsItLit()
{
    ListWindow w;
    ZoneCard *tokyo = w.card(QStringLiteral("Tokyo"));
    ZoneCard *office = w.card(QStringLiteral("Office"));
    const auto enter = [](ZoneCard *card) {
        QEnterEvent event(QPointF(5, 5), card->mapToGlobal(QPointF(5, 5)),
                          card->mapToGlobal(QPointF(5, 5)));
        QApplication::sendEvent(card, &event);
    };
    const auto leave = [](ZoneCard *card) {
        QEvent event(QEvent::Leave);
        QApplication::sendEvent(card, &event);
    };
    enter(tokyo);
    QVERIFY(tokyo->state().isHighlighted);
    // The neighbour is entered before the first card hears that it was left.
    enter(office);
    leave(tokyo);
    QVERIFY(office->state().isHighlighted);
    QCOMPARE(office->highlightAmount(), 1.0);
    QVERIFY(!tokyo->state().isHighlighted);
    QCOMPARE(tokyo->highlightAmount(), 0.0);
    QVERIFY(office->row()->state().isReorderHighlighted);
    leave(office);
    QCOMPARE(w.view->state().hoveredId(), std::nullopt);
}

void TestZoneCollectionView::realPointerHover()
{
    ListWindow w;
    ZoneCard *tokyo = w.card(QStringLiteral("Tokyo"));
    ZoneCard *office = w.card(QStringLiteral("Office"));
    QCursor::setPos(tokyo->mapToGlobal(QPoint(8, tokyo->height() / 2)));
    QTRY_VERIFY_WITH_TIMEOUT(tokyo->state().isHighlighted, timeout);
    QCursor::setPos(office->mapToGlobal(QPoint(8, office->height() / 2)));
    QTRY_VERIFY_WITH_TIMEOUT(office->state().isHighlighted, timeout);
    QVERIFY(!tokyo->state().isHighlighted);
    // Below the last card: off every card, nothing is lit.
    QCursor::setPos(w.view->mapToGlobal(QPoint(200, w.view->height() - 10)));
    QTRY_COMPARE_WITH_TIMEOUT(w.view->state().hoveredId(), std::nullopt, timeout);
}

void TestZoneCollectionView::clockTickKeepsTheCards()
{
    ListWindow w;
    const QList<ZoneCard *> before = w.cards();
    QList<QPointer<QWidget>> times;
    for (ZoneCard *card : before)
        times.append(ListWindow::in<TextLine>(card, QStringLiteral("zone-time")));

    w.panel.clock->setNow(w.panel.clock->now().addSecs(60));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(w.cards(), before);
    for (qsizetype i = 0; i < before.size(); ++i)
        QCOMPARE(ListWindow::in<TextLine>(before.at(i), QStringLiteral("zone-time")), times.at(i));
    QCOMPARE(static_cast<TextLine *>(times.at(1).data())->text(), QStringLiteral("09:31"));

    // An edit of one zone keeps every card as well.
    w.panel.store->togglePin(w.panel.id(1));
    w.panel.store->setFormat(MenuBarFormat::labelTime12);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(w.cards(), before);
    QCOMPARE(w.view->findChildren<ZoneCard *>().size(), 4);
    QCOMPARE(static_cast<TextLine *>(times.at(1).data())->text(), QStringLiteral("9:31a"));
    QCOMPARE(ListWindow::in<QToolButton>(before.at(1), "pin-button")->accessibleName(),
             QStringLiteral("Unpin Tokyo"));

    // Adding makes one card; removing drops only that one.
    w.panel.store->add(QStringLiteral("Australia/Sydney"));
    QCOMPARE(w.cards().size(), 5);
    QCOMPARE(w.cards().mid(0, 4), before);
    w.panel.store->remove(w.panel.id(4));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(w.view->findChildren<ZoneCard *>(), w.cards());
    QCOMPARE(w.cards(), before);
}

void TestZoneCollectionView::unknownIdentifierShowsDashes()
{
    ListWindow w({makeZone(QStringLiteral("Mars/Olympus_Mons"), QStringLiteral("Base"))});
    ZoneCard *card = w.card(QStringLiteral("Base"));
    QVERIFY(card);
    QCOMPARE(ListWindow::in<TextLine>(card, "zone-time")->text(), QStringLiteral("--:--"));
    QCOMPARE(ListWindow::in<TextLine>(card, "zone-subtitle")->text(),
             QStringLiteral("Mars/Olympus_Mons"));
    QCOMPARE(ListWindow::in<TextLine>(card, "zone-time")->accessibleName(),
             QStringLiteral("Time in Base: --:--"));
}

void TestZoneCollectionView::emptyListShowsThePlaceholder()
{
    ListWindow w(QList<SavedZone>{});
    auto *placeholder = w.view->findChild<QWidget *>(QStringLiteral("empty-placeholder"));
    QVERIFY(placeholder->isVisible());
    QCOMPARE(placeholder->findChild<TextLine *>(QStringLiteral("empty-title"))->text(),
             QStringLiteral("Your world starts here"));
    QCOMPARE(placeholder->findChild<QLabel *>(QStringLiteral("empty-description"))->text(),
             QStringLiteral("Add a city above. Pin it to keep its time in your menu bar."));
    QVERIFY(w.cards().isEmpty());

    w.panel.store->add(QStringLiteral("Asia/Tokyo"));
    QVERIFY(!placeholder->isVisible());
    QCOMPARE(w.visibleNames(), QStringList{"Tokyo"});
    w.panel.store->remove(w.panel.id(0));
    QVERIFY(placeholder->isVisible());
}

void TestZoneCollectionView::keyboardSelectsMovesRenamesAndOpensTheMenu()
{
    ListWindow w;
    w.stack()->setFocus();
    QTRY_VERIFY_WITH_TIMEOUT(w.stack()->hasFocus(), timeout);
    QTest::keyClick(w.stack(), Qt::Key_Down);
    QCOMPARE(w.view->state().selectedId(), w.panel.id(0));
    QTest::keyClick(w.stack(), Qt::Key_Down);
    QTest::keyClick(w.stack(), Qt::Key_Down);
    QCOMPARE(w.view->state().selectedId(), w.panel.id(2));
    QTest::keyClick(w.stack(), Qt::Key_Up);
    QCOMPARE(w.view->state().selectedId(), w.panel.id(1));

    // Alt+Up moves the selected Tokyo to the top; at the top it stays.
    QTest::keyClick(w.stack(), Qt::Key_Up, Qt::AltModifier);
    QTest::keyClick(w.stack(), Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(w.panel.displayNames(), (QStringList{"Tokyo", "Stockholm", "Office", "London"}));
    QTest::keyClick(w.stack(), Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(w.panel.displayNames(), (QStringList{"Stockholm", "Tokyo", "Office", "London"}));
    QCOMPARE(w.view->state().selectedId(), w.card(QStringLiteral("Tokyo"))->zoneId());

    // Shift+F10 and the Menu key open the selected card's menu.
    for (const auto &[key, modifiers] :
         {std::pair{Qt::Key_F10, Qt::ShiftModifier}, std::pair{Qt::Key_Menu, Qt::NoModifier}}) {
        QTest::keyClick(w.stack(), key, modifiers);
        QMenu *menu = w.view->findChild<QMenu *>(QStringLiteral("zone-menu"));
        QVERIFY(menu);
        QVERIFY(ListWindow::action(menu, QStringLiteral("Copy time")));
        w.closeMenus();
    }

    // F2 and Return rename the selected card.
    QTest::keyClick(w.stack(), Qt::Key_F2);
    QTRY_VERIFY_WITH_TIMEOUT(w.field() && w.field()->hasFocus(), timeout);
    QCOMPARE(w.field()->text(), QStringLiteral("Tokyo"));
    QTest::keyClick(w.field(), Qt::Key_Escape);
    QTRY_VERIFY_WITH_TIMEOUT(w.stack()->hasFocus(), timeout);
    QTest::keyClick(w.stack(), Qt::Key_Return);
    QTRY_VERIFY_WITH_TIMEOUT(w.field() && w.field()->hasFocus(), timeout);
    QCOMPARE(w.view->state().editingId(), w.card(QStringLiteral("Tokyo"))->zoneId());
}

void TestZoneCollectionView::accessibleActions()
{
    ListWindow w;
    ZoneCard *tokyo = w.card(QStringLiteral("Tokyo"));
    QAccessibleInterface *card = QAccessible::queryAccessibleInterface(tokyo);
    QVERIFY(card && card->actionInterface());
    QCOMPARE(card->role(), QAccessible::ListItem);
    QCOMPARE(card->text(QAccessible::Name), QStringLiteral("Tokyo"));
    const QStringList names = card->actionInterface()->actionNames();
    for (const char *name : {"Rename", "Move up", "Move down"})
        QVERIFY2(names.contains(QLatin1String(name)), name);

    card->actionInterface()->doAction(QStringLiteral("Move up"));
    QCOMPARE(w.panel.displayNames(), (QStringList{"Tokyo", "Stockholm", "Office", "London"}));
    card->actionInterface()->doAction(QStringLiteral("Move up"));
    QCOMPARE(w.panel.displayNames(), (QStringList{"Tokyo", "Stockholm", "Office", "London"}));
    card->actionInterface()->doAction(QStringLiteral("Move down"));
    QCOMPARE(w.panel.displayNames(), (QStringList{"Stockholm", "Tokyo", "Office", "London"}));
    card->actionInterface()->doAction(QStringLiteral("Rename"));
    QCOMPARE(w.view->state().editingId(), tokyo->zoneId());

    // Decoration is skipped by assistive technology.
    QAccessibleInterface *handle = QAccessible::queryAccessibleInterface(
        ListWindow::in<QLabel>(w.card(QStringLiteral("London")), "zone-handle"));
    QVERIFY(handle->state().invisible);
    QVERIFY(handle->text(QAccessible::Name).isEmpty());
}

void TestZoneCollectionView::tabReachesEveryButton()
{
    ListWindow w;
    w.stack()->setFocus();
    QTRY_VERIFY_WITH_TIMEOUT(w.stack()->hasFocus(), timeout);
    QList<QWidget *> expected;
    for (ZoneCard *card : w.cards()) {
        expected.append(ListWindow::in<QToolButton>(card, "pin-button"));
        expected.append(ListWindow::in<QToolButton>(card, "rename-button"));
    }
    QList<QWidget *> reached;
    for (qsizetype i = 0; i < expected.size(); ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        reached.append(QApplication::focusWidget());
    }
    QCOMPARE(reached, expected);
    for (QWidget *button : std::as_const(expected))
        QVERIFY2(!button->accessibleName().isEmpty(), qPrintable(button->objectName()));
}

void TestZoneCollectionView::leavingSavesAndDropsTheConfirmation()
{
    ListWindow w;
    QVERIFY(w.renameTo(QStringLiteral("London"), QStringLiteral("Home")));
    w.view->hide();
    QCOMPARE(w.panel.store->zones().at(3).customLabel, std::optional<QString>("Home"));
    w.view->show();

    QMenu *menu = w.menuOf(QStringLiteral("Tokyo"));
    QVERIFY(ListWindow::trigger(menu, QStringLiteral("Remove city\u2026")));
    w.closeMenus();
    QVERIFY(w.view->state().removingZone());
    w.view->leave();
    QCOMPARE(w.view->state().removingZone(), std::nullopt);
    QCOMPARE(w.panel.store->zones().size(), 4);
}

void TestZoneCollectionView::identifiersOnlyWhenAsked()
{
    for (const bool shows : {false, true}) {
        ListWindow w(fourZones(), shows);
        auto *identifier = ListWindow::in<TextLine>(w.card(QStringLiteral("Office")),
                                                    QStringLiteral("zone-identifier"));
        QCOMPARE(identifier->isVisible(), shows);
        QCOMPARE(identifier->text(), QStringLiteral("America/New_York"));
    }
}

void TestZoneCollectionView::reduceMotionIsReadFromTheEnvironment()
{
    // The test runs with ZONARA_REDUCE_MOTION=1.
    PanelFixture panel(fourZones());
    ZoneCollectionView view(*panel.store, *panel.clock, false);
    QVERIFY(view.reduceMotion());
}

void TestZoneCollectionView::motionUnlessReduced_data()
{
    QTest::addColumn<bool>("reduceMotion");
    QTest::newRow("animated") << false;
    QTest::newRow("reduce motion") << true;
}

void TestZoneCollectionView::motionUnlessReduced()
{
    QFETCH(bool, reduceMotion);
    ListWindow w(fourZones(), false, reduceMotion);
    ZoneCard *london = w.card(QStringLiteral("London"));
    ZoneCard *stockholm = w.card(QStringLiteral("Stockholm"));
    const int topY = stockholm->y();
    const int bottomY = london->y();

    // A move: London to the top, Stockholm one place down.
    w.panel.store->move({3}, 0);
    const bool movedAtOnce = london->y() == topY;
    QCOMPARE(movedAtOnce, reduceMotion);
    QTRY_COMPARE_WITH_TIMEOUT(london->y(), topY, timeout);
    QTRY_COMPARE_WITH_TIMEOUT(stockholm->y(), topY + london->height() + 8, timeout);
    QVERIFY(bottomY > topY);

    // The highlight: lit at once, or fading in over 0.14 s.
    QEnterEvent enter(QPointF(5, 5), london->mapToGlobal(QPointF(5, 5)),
                      london->mapToGlobal(QPointF(5, 5)));
    QApplication::sendEvent(london, &enter);
    QCOMPARE(london->highlightAmount() == 1.0, reduceMotion);
    QTRY_COMPARE_WITH_TIMEOUT(london->highlightAmount(), 1.0, timeout);
}

void TestZoneCollectionView::noNativeSelectionHighlight()
{
    ListWindow w;
    QPalette palette = w.window.palette();
    palette.setColor(QPalette::Highlight, QColor(0, 120, 215));
    w.window.setPalette(palette);
    QTest::mouseClick(ListWindow::in<TextLine>(w.card(QStringLiteral("Tokyo")), "zone-subtitle"),
                      Qt::LeftButton);
    QCOMPARE(w.view->state().selectedId(), w.panel.id(1));
    const QImage shot = w.view->grab().toImage();
    QVERIFY(!containsColour(shot, QColor(0, 120, 215)));
    // Only the card's own highlight marks the selection: accent wash over the card.
    ZoneCard *tokyo = w.card(QStringLiteral("Tokyo"));
    const QPoint inside = tokyo->mapTo(w.view, QPoint(4, tokyo->height() / 2));
    const QColor wash = shot.pixelColor(inside);
    QVERIFY(wash != w.view->palette().color(QPalette::Base));
}

void TestZoneCollectionView::highlightRecoloursWithThePalette()
{
    ListWindow w;
    w.view->findChild<ZoneCardStack *>()->setFocus();
    QTest::keyClick(w.stack(), Qt::Key_Down);
    ZoneCard *card = w.cards().constFirst();
    QVERIFY(card->state().isHighlighted);
    const QPoint border(card->width() / 2, 0);
    const QColor lightBorder = card->grab().toImage().pixelColor(border);

    QPalette dark = w.window.palette();
    dark.setColor(QPalette::Window, QColor(0x2b, 0x2b, 0x2d));
    dark.setColor(QPalette::Base, QColor(0x36, 0x36, 0x39));
    dark.setColor(QPalette::WindowText, QColor(0xec, 0xec, 0xec));
    w.window.setPalette(dark);
    const QColor darkBorder = card->grab().toImage().pixelColor(border);
    // Half the accent of its appearance, over the card background washed with 6 % of it.
    const auto over = [](const QColor &top, qreal alpha, const QColor &bottom) {
        const auto mix = [alpha](int a, int b) { return qRound(a * alpha + b * (1 - alpha)); };
        return QColor(mix(top.red(), bottom.red()), mix(top.green(), bottom.green()),
                      mix(top.blue(), bottom.blue()));
    };
    const auto expected = [&over](const QColor &accent, const QColor &base) {
        return over(accent, 0.5, over(accent, 0.06, base));
    };
    const auto near = [](const QColor &a, const QColor &b) {
        return qAbs(a.red() - b.red()) <= 3 && qAbs(a.green() - b.green()) <= 3 &&
               qAbs(a.blue() - b.blue()) <= 3;
    };
    QVERIFY2(near(lightBorder, expected(AppStyle::accent(false), Qt::white)),
             qPrintable(lightBorder.name()));
    QVERIFY2(near(darkBorder, expected(AppStyle::accent(true), QColor(0x36, 0x36, 0x39))),
             qPrintable(darkBorder.name()));
}

QTEST_MAIN(TestZoneCollectionView)
#include "tst_zonecollectionview.moc"
