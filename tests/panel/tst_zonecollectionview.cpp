#include "AccessibleRetirement.h"
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
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>

namespace {

constexpr int timeout = 5000;
const QStringList initialOrder{"Stockholm", "Tokyo", "Office", "London"};

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
    template<typename T = QWidget> T *in(const QString &card, const QString &name) const
    {
        return this->card(card)->findChild<T *>(name);
    }
    InlineEditButton *inlineButton(const QString &card, const QString &title) const
    {
        for (InlineEditButton *button : this->card(card)->findChildren<InlineEditButton *>()) {
            if (button->title() == title)
                return button;
        }
        return nullptr;
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
    void clickSubtitle(const QString &name)
    {
        QTest::mouseClick(in<TextLine>(name, QStringLiteral("zone-subtitle")), Qt::LeftButton);
    }

    void doubleClickName(const QString &name)
    {
        auto *label = in<TextLine>(name, QStringLiteral("zone-name"));
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
    // Opens the menu of a card, triggers one of its items and closes the menu.
    [[nodiscard]] bool trigger(const QString &name, const QString &text,
                               QContextMenuEvent::Reason reason = QContextMenuEvent::Mouse)
    {
        QMenu *menu = menuOf(name, reason);
        QAction *found = menu ? action(menu, text) : nullptr;
        if (!found || !found->isEnabled())
            return false;
        found->trigger();
        closeMenus();
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

void enter(ZoneCard *card)
{
    QEnterEvent event(QPointF(5, 5), card->mapToGlobal(QPointF(5, 5)),
                      card->mapToGlobal(QPointF(5, 5)));
    QApplication::sendEvent(card, &event);
}

void leave(ZoneCard *card)
{
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(card, &event);
}

} // namespace

class TestZoneCollectionView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cardsOrPlaceholder();
    void renameEndsOnce_data();
    void renameEndsOnce();
    void doubleClickOnAnotherCardSavesTheFirst();
    void removeCityDiscardsTheRenameAndConfirms();
    void hidingSavesTheRename();
    void dragThirdCardToTheTop();
    void noDragWhileConfirming();
    void menuEnabledStatesAtTheEnds_data();
    void menuEnabledStatesAtTheEnds();
    void menuPinAndCityName();
    void copyTime_data();
    void copyTime();
    void shiftTheMoment_data();
    void shiftTheMoment();
    void copyAllWhileShifted();
    void shiftAcrossAChangeInOneZoneOnly();
    void typedTimeTheClocksSkipOrRepeat_data();
    void typedTimeTheClocksSkipOrRepeat();
    void changeNotice_data();
    void changeNotice();
    void mistypedTimeStaysOpen();
    void nightCitiesAreFaint();
    void hoverLeavingOntoANeighbourKeepsItLit();
    void clockTickKeepsTheCards();
    void unknownIdentifierShowsDashes();
    void timeIsNeverCut();
    void keyboardSelectsMovesRenamesAndOpensTheMenu();
    void tabReachesEveryButton();
    void accessibleActions();
    void listSelectsAndRetiresCards();
    void reduceMotionIsReadFromTheEnvironment();
    void motionUnlessReduced_data();
    void motionUnlessReduced();
    void noNativeSelectionHighlight();
    void highlightRecoloursWithThePalette();
};

void TestZoneCollectionView::cardsOrPlaceholder()
{
    ListWindow w(QList<SavedZone>{}, true);
    auto *placeholder = w.view->findChild<QWidget *>(QStringLiteral("empty-placeholder"));
    QVERIFY(placeholder->isVisible());
    QVERIFY(w.cards().isEmpty());
    w.panel.store->setZones(fourZones());
    QVERIFY(!placeholder->isVisible());
    QCOMPARE(w.visibleNames(), initialOrder);
    // The settings window asks for the identifiers as well; the panel does not.
    QCOMPARE(w.in<TextLine>("Office", "zone-identifier")->text(),
             QStringLiteral("America/New_York"));
    QVERIFY(w.in("Office", "zone-identifier")->isVisible());
    ListWindow panel;
    QVERIFY(!panel.in("Office", "zone-identifier")->isVisible());
}

void TestZoneCollectionView::renameEndsOnce_data()
{
    QTest::addColumn<QString>("ending");
    QTest::addColumn<bool>("saves");
    QTest::newRow("Return") << "Return" << true;
    QTest::newRow("click elsewhere") << "click elsewhere" << true;
    QTest::newRow("Save button") << "Save name (Return)" << true;
    QTest::newRow("Escape") << "Escape" << false;
    QTest::newRow("Cancel button") << "Cancel rename (Escape)" << false;
}

void TestZoneCollectionView::renameEndsOnce()
{
    QFETCH(QString, ending);
    QFETCH(bool, saves);
    ListWindow w;
    QSignalSpy zones(w.panel.store.get(), &ZoneStore::zonesChanged);
    QVERIFY(w.renameTo("Tokyo", "Team"));
    if (ending == "Return")
        QTest::keyClick(w.field(), Qt::Key_Return);
    else if (ending == "Escape")
        QTest::keyClick(w.field(), Qt::Key_Escape);
    else if (ending == "click elsewhere")
        w.clickSubtitle("London");
    else
        QTest::mouseClick(w.inlineButton("Tokyo", ending), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(!w.field(), timeout);
    // A later click elsewhere neither saves again nor saves an abandoned draft.
    w.clickSubtitle("London");
    QCOMPARE(zones.count(), saves ? 1 : 0);
    QCOMPARE(w.panel.store->zones().at(1).customLabel,
             saves ? std::optional<QString>("Team") : std::nullopt);
    QCOMPARE(w.view->state().editingId(), std::nullopt);
    // The click selected London: it did its own work as well.
    QCOMPARE(w.view->state().selectedId(), w.panel.id(3));
}

void TestZoneCollectionView::doubleClickOnAnotherCardSavesTheFirst()
{
    ListWindow w;
    QVERIFY(w.renameTo("Tokyo", "Team"));
    w.doubleClickName("London");
    QCOMPARE(w.panel.store->zones().at(1).customLabel, std::optional<QString>("Team"));
    QTRY_VERIFY_WITH_TIMEOUT(w.field() && w.field()->hasFocus(), timeout);
    QCOMPARE(w.field()->text(), QStringLiteral("London"));
    QVERIFY(w.card("London")->isAncestorOf(w.field()));
}

void TestZoneCollectionView::removeCityDiscardsTheRenameAndConfirms()
{
    ListWindow w;
    QVERIFY(w.renameTo("Tokyo", "Team"));
    // From the keyboard: a mouse press elsewhere would already have saved the rename.
    QVERIFY(w.trigger("London", "Remove city\u2026", QContextMenuEvent::Keyboard));
    QCOMPARE(w.panel.store->zones().at(1).customLabel, std::nullopt);
    QTRY_VERIFY_WITH_TIMEOUT(!w.field(), timeout);
    QVERIFY(w.in("London", "remove-confirmation")->isVisible());
    QCOMPARE(w.in<TextLine>("London", "remove-question")->text(),
             QStringLiteral("Remove this city?"));
    QVERIFY(!w.in("Tokyo", "remove-confirmation")->isVisible());

    QTest::mouseClick(w.in<QPushButton>("London", "remove-confirm"), Qt::LeftButton);
    const QStringList remaining{"Stockholm", "Tokyo", "Office"};
    QCOMPARE(w.panel.displayNames(), remaining);
    QTRY_COMPARE_WITH_TIMEOUT(w.visibleNames(), remaining, timeout);
}

void TestZoneCollectionView::hidingSavesTheRename()
{
    ListWindow w;
    QTest::mouseClick(w.in<QToolButton>("London", "rename-button"), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(w.field() && w.field()->hasFocus(), timeout);
    QTest::keyClicks(w.field(), QStringLiteral("Home"));
    w.view->hide();
    QCOMPARE(w.panel.store->zones().at(3).customLabel, std::optional<QString>("Home"));
}

void TestZoneCollectionView::dragThirdCardToTheTop()
{
    ListWindow w;
    QSignalSpy reorders(w.stack(), &ZoneCardStack::reorderRequested);
    const QList<ZoneCard *> cards = w.cards();
    ZoneCard *third = cards.at(2);

    // Press on the third card's subtitle, then drag to the top half of the first card.
    auto *grip = third->findChild<TextLine *>(QStringLiteral("zone-subtitle"));
    QTest::mousePress(grip, Qt::LeftButton);
    QTest::mouseMove(third, grip->mapTo(third, grip->rect().center()) + QPoint(0, -10));
    QVERIFY(w.stack()->isDragging());
    const QPoint overFirst =
        third->mapFrom(w.stack(), cards.at(0)->geometry().topLeft() + QPoint(40, 8));
    QTest::mouseMove(third, overFirst);
    QCOMPARE(w.stack()->dropDestination(), 0);
    // The drop line is drawn in the accent colour above the first card.
    const std::optional<int> lineY = w.stack()->dropIndicatorY();
    QVERIFY(lineY && *lineY < cards.at(0)->y());
    QCOMPARE(w.stack()->grab().toImage().pixelColor(w.stack()->width() / 2, *lineY).rgb(),
             AppStyle::accent(w.stack()->palette()).rgb());

    QTest::mouseRelease(third, Qt::LeftButton, Qt::NoModifier, overFirst);
    // The third card's offset, before the first card.
    QCOMPARE(reorders.count(), 1);
    QCOMPARE(reorders.at(0).at(0).toInt(), 2);
    QCOMPARE(reorders.at(0).at(1).toInt(), 0);
    const QStringList moved{"Office", "Stockholm", "Tokyo", "London"};
    QCOMPARE(w.panel.displayNames(), moved);
    QCOMPARE(w.view->state().selectedId(), third->zoneId());
    QTRY_COMPARE_WITH_TIMEOUT(w.visibleNames(), moved, timeout);
    QVERIFY(!w.stack()->dropIndicatorY());
}

void TestZoneCollectionView::noDragWhileConfirming()
{
    ListWindow w;
    QVERIFY(w.trigger("Tokyo", "Remove city\u2026"));
    QSignalSpy reorders(w.stack(), &ZoneCardStack::reorderRequested);
    ZoneCard *london = w.card("London");
    const auto dragUp = [&] {
        auto *grip = london->findChild<TextLine *>(QStringLiteral("zone-subtitle"));
        QTest::mousePress(grip, Qt::LeftButton);
        QTest::mouseMove(london, grip->mapTo(london, grip->rect().center()) + QPoint(0, -20));
        const bool dragging = w.stack()->isDragging();
        const QPoint top = london->mapFrom(w.stack(), QPoint(40, 6));
        QTest::mouseMove(london, top);
        QTest::mouseRelease(london, Qt::LeftButton, Qt::NoModifier, top);
        return dragging;
    };
    QVERIFY(!dragUp());
    QCOMPARE(reorders.count(), 0);
    QCOMPARE(w.panel.displayNames(), initialOrder);

    // Once the confirmation is cancelled, dragging works again.
    QTest::mouseClick(w.in<QPushButton>("Tokyo", "remove-cancel"), Qt::LeftButton);
    QVERIFY(dragUp());
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
    QCOMPARE(ListWindow::action(menu, QStringLiteral("Move up"))->isEnabled(), canMoveUp);
    QCOMPARE(ListWindow::action(menu, QStringLiteral("Move down"))->isEnabled(), canMoveDown);
    QVERIFY(ListWindow::action(menu, QStringLiteral("Rename"))->isEnabled());
    w.closeMenus();
    if (canMoveUp) {
        QVERIFY(w.trigger(name, QStringLiteral("Move up")));
        QCOMPARE(w.panel.displayNames().indexOf(name), initialOrder.indexOf(name) - 1);
        QCOMPARE(w.view->state().selectedId(), w.card(name)->zoneId());
    }
}

void TestZoneCollectionView::menuPinAndCityName()
{
    ListWindow w;
    QVERIFY(!ListWindow::action(w.menuOf("Stockholm"), "Use city name"));
    w.closeMenus();
    QVERIFY(w.trigger("Stockholm", "Unpin from menu bar"));
    QVERIFY(!w.panel.store->zones().at(0).isPinned);
    QVERIFY(w.trigger("Office", "Use city name"));
    QCOMPARE(w.panel.store->zones().at(2).customLabel, std::nullopt);
    QVERIFY(w.card("New York"));
}

void TestZoneCollectionView::copyTime_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("clipboard");
    QTest::newRow("known zone") << "Asia/Tokyo"
                                << "Tokyo"
                                << "Tokyo 09:30";
    QTest::newRow("unknown zone keeps the clipboard") << "Mars/Olympus_Mons"
                                                      << "Olympus Mons"
                                                      << "before";
}

void TestZoneCollectionView::copyTime()
{
    QFETCH(QString, identifier);
    QFETCH(QString, name);
    QFETCH(QString, clipboard);
    ListWindow w({makeZone(identifier)});
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    QVERIFY(w.trigger(name, QStringLiteral("Copy time")));
    QCOMPARE(QGuiApplication::clipboard()->text(), clipboard);
}

void TestZoneCollectionView::shiftTheMoment_data()
{
    // From 00:30 UTC on Monday 2 March: 09:30 in Tokyo, 00:30 in London.
    QTest::addColumn<QString>("gesture");
    QTest::addColumn<QString>("tokyo");
    QTest::addColumn<QString>("london");
    QTest::addColumn<QString>("strip");
    QTest::newRow("Right") << "Right"
                           << "09:45"
                           << "00:45"
                           << "+15 min \u00b7 Mon 09:45 in Tokyo";
    QTest::newRow("Shift+Right") << "Shift+Right"
                                 << "10:30"
                                 << "01:30"
                                 << "+1 h \u00b7 Mon 10:30 in Tokyo";
    QTest::newRow("Shift+Left, London's day before") << "Shift+Left"
                                                     << "08:30"
                                                     << "23:30"
                                                     << "-1 h \u00b7 Mon 08:30 in Tokyo";
    QTest::newRow("wheel over the time") << "wheel"
                                         << "09:45"
                                         << "00:45"
                                         << "+15 min \u00b7 Mon 09:45 in Tokyo";
    QTest::newRow("drag two steps") << "drag"
                                    << "10:00"
                                    << "01:00"
                                    << "+30 min \u00b7 Mon 10:00 in Tokyo";
    QTest::newRow("digits typed on the list") << "type"
                                              << "15:00"
                                              << "06:00"
                                              << "+5 h 30 min \u00b7 Mon 15:00 in Tokyo";
    QTest::newRow("Set time\u2026") << "menu"
                                    << "15:00"
                                    << "06:00"
                                    << "+5 h 30 min \u00b7 Mon 15:00 in Tokyo";
    QTest::newRow("double-click the time") << "double-click"
                                           << "15:00"
                                           << "06:00"
                                           << "+5 h 30 min \u00b7 Mon 15:00 in Tokyo";
}

void TestZoneCollectionView::shiftTheMoment()
{
    QFETCH(QString, gesture);
    QFETCH(QString, tokyo);
    QFETCH(QString, london);
    QFETCH(QString, strip);
    ListWindow w;
    QSignalSpy stripChanges(w.view, &ZoneCollectionView::shiftTextChanged);
    // The settings window's list stays at now: nothing here works there.
    auto *tokyoTime = w.in<TextLine>("Tokyo", "zone-time");
    QTest::keyClick(w.stack(), Qt::Key_Right);
    QVERIFY(!ListWindow::action(w.menuOf("Tokyo"), QStringLiteral("Set time\u2026")));
    w.closeMenus();
    QCOMPARE(tokyoTime->text(), QStringLiteral("09:30"));

    w.view->setCanShiftTime(true);
    w.clickSubtitle("Tokyo");
    const QPoint onTime = tokyoTime->rect().center();
    const auto typeInto = [&w](const QString &text) {
        QTRY_VERIFY_WITH_TIMEOUT(w.field() && w.field()->hasFocus(), timeout);
        QTest::keyClicks(w.field(), text);
        QTest::keyClick(w.field(), Qt::Key_Return);
    };
    if (gesture == "Right") {
        QTest::keyClick(w.stack(), Qt::Key_Right);
    } else if (gesture.startsWith("Shift+")) {
        QTest::keyClick(w.stack(), gesture.endsWith("Left") ? Qt::Key_Left : Qt::Key_Right,
                        Qt::ShiftModifier);
    } else if (gesture == "wheel") {
        const QPoint onCard = tokyoTime->mapTo(w.card("Tokyo"), onTime);
        QWheelEvent wheel(onCard, tokyoTime->mapToGlobal(onTime), {}, QPoint(0, 120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(w.card("Tokyo"), &wheel);
    } else if (gesture == "drag") {
        QTest::mousePress(tokyoTime, Qt::LeftButton, {}, onTime);
        QTest::mouseMove(tokyoTime, onTime + QPoint(25, 3));
        QTest::mouseRelease(tokyoTime, Qt::LeftButton, {}, onTime + QPoint(25, 3));
        QCOMPARE(w.visibleNames(), initialOrder); // the time moved, not the card
    } else if (gesture == "type") {
        QTest::keyClick(w.stack(), Qt::Key_1);
        QCOMPARE(w.field()->text(), QStringLiteral("1"));
        typeInto(QStringLiteral("5:00"));
    } else {
        if (gesture == "menu")
            QVERIFY(w.trigger("Tokyo", QStringLiteral("Set time\u2026")));
        else
            QTest::mouseDClick(tokyoTime, Qt::LeftButton, {}, onTime);
        QTRY_VERIFY_WITH_TIMEOUT(w.field() && w.field()->selectedText() == "09:30", timeout);
        typeInto(QStringLiteral("3pm"));
    }
    QCOMPARE(tokyoTime->text(), tokyo);
    QCOMPARE(w.in<TextLine>("London", "zone-time")->text(), london);
    QCOMPARE(w.view->shiftText(), strip);
    QCOMPARE(stripChanges.size(), 1);
    // The relative day is the shown moment's.
    QCOMPARE(w.in<TextLine>("Tokyo", "zone-subtitle")->text().endsWith("tomorrow"),
             london == "23:30");
    QVERIFY(w.stack()->hasFocus());
    QVERIFY(w.trigger("Tokyo", QStringLiteral("Copy time")));
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("Tokyo ") + tokyo);
}

void TestZoneCollectionView::copyAllWhileShifted()
{
    ListWindow w;
    w.view->setCanShiftTime(true);
    w.clickSubtitle("London");
    QTest::keyClick(w.stack(), Qt::Key_Left, Qt::ShiftModifier);
    QTest::keyClick(w.stack(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(),
             QStringLiteral("Stockholm Mon 00:30 \u00b7 Tokyo Mon 08:30 \u00b7 Office 18:30 "
                            "\u00b7 London 23:30"));
}

void TestZoneCollectionView::shiftAcrossAChangeInOneZoneOnly()
{
    // Sunday 8 March 2026, 06:30 UTC: New York moves to summer time at 07:00
    // UTC, London three weeks later.
    ListWindow w;
    w.panel.clock->setNow(QDateTime(QDate(2026, 3, 8), QTime(6, 30), QTimeZone::utc()));
    w.view->setCanShiftTime(true);
    w.clickSubtitle("Office");
    QCOMPARE(w.in<TextLine>("Office", "zone-time")->text(), QStringLiteral("01:30"));
    for (int i = 0; i < 2; ++i)
        QTest::keyClick(w.stack(), Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(w.in<TextLine>("Office", "zone-time")->text(), QStringLiteral("04:30"));
    QVERIFY(w.in<TextLine>("Office", "zone-subtitle")->text().contains("EDT \u00b7 -4h"));
    QCOMPARE(w.in<TextLine>("London", "zone-time")->text(), QStringLiteral("08:30"));
    QVERIFY(w.in<TextLine>("London", "zone-subtitle")->text().startsWith("GMT"));
    QCOMPARE(w.view->shiftText(), QStringLiteral("+2 h \u00b7 Sun 04:30 in Office"));
}

void TestZoneCollectionView::typedTimeTheClocksSkipOrRepeat_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("london");
    // Midnight in New York on the days its clocks skip 02:00-03:00 and repeat 01:00-02:00.
    QTest::newRow("skipped: the first valid time")
        << QDateTime(QDate(2026, 3, 8), QTime(5, 0), QTimeZone::utc()) << "2:30"
        << "03:00"
        << "07:00";
    QTest::newRow("repeated: the earlier")
        << QDateTime(QDate(2026, 11, 1), QTime(4, 0), QTimeZone::utc()) << "1:30"
        << "01:30"
        << "05:30";
}

void TestZoneCollectionView::typedTimeTheClocksSkipOrRepeat()
{
    QFETCH(QDateTime, now);
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    QFETCH(QString, london);
    ListWindow w;
    w.panel.clock->setNow(now);
    w.view->setCanShiftTime(true);
    w.clickSubtitle("Office");
    QTest::keyClick(w.stack(), typed.at(0).toLatin1());
    QTRY_VERIFY_WITH_TIMEOUT(w.field() && w.field()->hasFocus(), timeout);
    QTest::keyClicks(w.field(), typed.mid(1));
    QTest::keyClick(w.field(), Qt::Key_Return);
    QCOMPARE(w.in<TextLine>("Office", "zone-time")->text(), shown);
    QCOMPARE(w.in<TextLine>("London", "zone-time")->text(), london);
}

void TestZoneCollectionView::changeNotice_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<QString>("office");
    QTest::addColumn<QString>("london");
    const auto at = [](int month, int day, int hour) {
        return QDateTime(QDate(2026, month, day), QTime(hour, 0), QTimeZone::utc());
    };
    // New York goes forward on 8 March at 07:00 UTC, London on 29 March at 01:00.
    QTest::newRow("seven days before") << at(3, 1, 7) << "clocks go forward Sun"
                                       << "";
    QTest::newRow("eight days before") << at(2, 28, 7) << ""
                                       << "";
    QTest::newRow("after New York's") << at(3, 22, 1) << ""
                                      << "clocks go forward Sun";
    QTest::newRow("back in autumn") << at(10, 20, 12) << ""
                                    << "clocks go back Sun";
}

void TestZoneCollectionView::changeNotice()
{
    QFETCH(QDateTime, now);
    QFETCH(QString, office);
    QFETCH(QString, london);
    ListWindow w;
    w.panel.clock->setNow(now);
    for (const auto &[name, notice] : {std::pair{"Office", office}, std::pair{"London", london}}) {
        auto *line = w.in<TextLine>(name, "zone-change-notice");
        QCOMPARE(line->isVisible() ? line->text() : QString(), notice);
        const QString spoken =
            QAccessible::queryAccessibleInterface(w.card(name))->text(QAccessible::Description);
        QCOMPARE(spoken.endsWith(notice) && !notice.isEmpty(), !notice.isEmpty());
    }
}

void TestZoneCollectionView::mistypedTimeStaysOpen()
{
    ListWindow w;
    w.view->setCanShiftTime(true);
    w.clickSubtitle("Tokyo");
    QTest::keyClick(w.stack(), Qt::Key_2);
    QTRY_VERIFY_WITH_TIMEOUT(w.field() && w.field()->hasFocus(), timeout);
    QTest::keyClicks(w.field(), "5:00");
    QTest::keyClick(w.field(), Qt::Key_Return);
    QVERIFY(w.field());
    QVERIFY(w.field()->accessibleDescription().contains("is not a time"));
    QCOMPARE(w.view->shiftText(), QString());
    QTest::keyClick(w.field(), Qt::Key_Escape);
    QTRY_VERIFY_WITH_TIMEOUT(!w.field(), timeout);
    QVERIFY(w.stack()->hasFocus());
    QCOMPARE(w.in<TextLine>("Tokyo", "zone-time")->text(), QStringLiteral("09:30"));
}

void TestZoneCollectionView::nightCitiesAreFaint()
{
    ListWindow w;
    w.view->setCanShiftTime(true);
    const auto faint = [&w](const char *name) {
        return w.in<TextLine>(name, "zone-time")->isDimmed();
    };
    QVERIFY(!faint("London"));
    // 09:30 in Tokyo, 00:30 in London.
    w.panel.store->setWorkingHours(WorkingHours{QTime(9, 0), QTime(18, 0)});
    QVERIFY(!faint("Tokyo"));
    QVERIFY(faint("London"));
    QVERIFY(QAccessible::queryAccessibleInterface(w.card("London"))
                ->text(QAccessible::Description)
                .contains("outside working hours"));
    // Nine hours on: 18:30 in Tokyo, whose working day has just ended, 09:30 in London.
    w.clickSubtitle("London");
    for (int i = 0; i < 9; ++i)
        QTest::keyClick(w.stack(), Qt::Key_Right, Qt::ShiftModifier);
    QVERIFY(faint("Tokyo"));
    QVERIFY(!faint("London"));
    w.panel.store->setWorkingHours(std::nullopt);
    QVERIFY(!faint("Tokyo"));
}

void TestZoneCollectionView::hoverLeavingOntoANeighbourKeepsItLit()
{
    ListWindow w;
    ZoneCard *tokyo = w.card("Tokyo");
    ZoneCard *office = w.card("Office");
    enter(tokyo);
    QVERIFY(tokyo->state().isHighlighted);
    // The neighbour is entered before the first card hears that it was left.
    enter(office);
    leave(tokyo);
    QVERIFY(office->state().isHighlighted);
    QCOMPARE(office->highlightAmount(), 1.0);
    QVERIFY(office->row()->state().isReorderHighlighted);
    QVERIFY(!tokyo->state().isHighlighted);
    QCOMPARE(tokyo->highlightAmount(), 0.0);
    leave(office);
    QCOMPARE(w.view->state().hoveredId(), std::nullopt);
}

void TestZoneCollectionView::clockTickKeepsTheCards()
{
    ListWindow w;
    const QList<ZoneCard *> before = w.cards();
    auto *tokyoTime = w.in<TextLine>("Tokyo", "zone-time");
    QVERIFY(w.renameTo("Tokyo", "Tok"));
    NameField *field = w.field();
    field->setCursorPosition(1);

    // A tick in the middle of a rename: the same cards and field, the caret left alone.
    w.panel.clock->setNow(w.panel.clock->now().addSecs(60));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(w.cards(), before);
    QCOMPARE(before.at(1)->findChild<TextLine *>(QStringLiteral("zone-time")), tokyoTime);
    QCOMPARE(tokyoTime->text(), QStringLiteral("09:31"));
    QCOMPARE(w.field(), field);
    QCOMPARE(field->cursorPosition(), 1);
    QVERIFY(field->hasFocus());
    QTest::keyClick(field, Qt::Key_Escape);

    // An edit of one zone, or of the format, keeps every card as well.
    auto *pin = before.at(1)->findChild<QToolButton *>(QStringLiteral("pin-button"));
    QTest::mouseClick(pin, Qt::LeftButton);
    QVERIFY(w.panel.store->zones().at(1).isPinned);
    w.panel.store->setFormat(MenuBarFormat::labelTime12);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(w.view->findChildren<ZoneCard *>(), before);
    QCOMPARE(tokyoTime->text(), QStringLiteral("9:31a"));
    QCOMPARE(pin->accessibleName(), QStringLiteral("Unpin Tokyo"));

    // Adding makes one card; removing drops only that one.
    w.panel.store->add(QStringLiteral("Australia/Sydney"));
    QCOMPARE(w.cards().mid(0, 4), before);
    w.panel.store->remove(w.panel.id(4));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(w.view->findChildren<ZoneCard *>(), before);

    // Closed, the list lets the clock tick by; shown again, it catches up once.
    w.window.hide();
    w.panel.clock->setNow(w.panel.clock->now().addSecs(3600));
    QCOMPARE(tokyoTime->text(), QStringLiteral("9:31a"));
    w.window.show();
    QCOMPARE(tokyoTime->text(), QStringLiteral("10:31a"));
}

void TestZoneCollectionView::unknownIdentifierShowsDashes()
{
    ListWindow w({makeZone(QStringLiteral("Mars/Olympus_Mons"), QStringLiteral("Base"))});
    auto *time = w.in<TextLine>("Base", "zone-time");
    QCOMPARE(time->text(), QStringLiteral("--:--"));
    QCOMPARE(time->accessibleName(), QStringLiteral("Time in Base: --:--"));
    QCOMPARE(w.in<TextLine>("Base", "zone-subtitle")->text(), QStringLiteral("Mars/Olympus_Mons"));
}

void TestZoneCollectionView::timeIsNeverCut()
{
    ListWindow w({makeZone(QStringLiteral("America/Argentina/Rio_Gallegos"),
                           QStringLiteral("A rather long nickname for a city"))});
    w.window.resize(260, 480);
    const QString name = QStringLiteral("A rather long nickname for a city");
    auto *time = w.in<TextLine>(name, QStringLiteral("zone-time"));
    QTRY_VERIFY_WITH_TIMEOUT(w.in(name, QStringLiteral("zone-name"))->width() <
                                 w.in(name, QStringLiteral("zone-name"))->sizeHint().width(),
                             timeout);
    QVERIFY(time->width() >= time->sizeHint().width());
    QVERIFY(time->geometry().right() < w.in(name, QStringLiteral("pin-button"))->geometry().left());
}

void TestZoneCollectionView::keyboardSelectsMovesRenamesAndOpensTheMenu()
{
    ListWindow w;
    w.stack()->setFocus();
    QTRY_VERIFY_WITH_TIMEOUT(w.stack()->hasFocus(), timeout);
    // Taking the keyboard selects the first card.
    QCOMPARE(w.view->state().selectedId(), w.panel.id(0));
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Up})
        QTest::keyClick(w.stack(), key);
    QCOMPARE(w.view->state().selectedId(), w.panel.id(1));

    // Alt+Up moves the selected Tokyo to the top; at the top it stays.
    QTest::keyClick(w.stack(), Qt::Key_Up, Qt::AltModifier);
    QTest::keyClick(w.stack(), Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(w.panel.displayNames(), (QStringList{"Tokyo", "Stockholm", "Office", "London"}));

    QTest::keyClick(w.stack(), Qt::Key_F10, Qt::ShiftModifier);
    QMenu *menu = w.view->findChild<QMenu *>(QStringLiteral("zone-menu"));
    QVERIFY(menu && ListWindow::action(menu, QStringLiteral("Copy time")));
    w.closeMenus();

    QTest::keyClick(w.stack(), Qt::Key_F2);
    QTRY_VERIFY_WITH_TIMEOUT(w.field() && w.field()->hasFocus(), timeout);
    QCOMPARE(w.field()->text(), QStringLiteral("Tokyo"));
    // Leaving the field by keyboard gives the keyboard back to the list.
    QTest::keyClick(w.field(), Qt::Key_Return);
    QTRY_VERIFY_WITH_TIMEOUT(w.stack()->hasFocus(), timeout);
}

void TestZoneCollectionView::tabReachesEveryButton()
{
    ListWindow w;
    w.stack()->setFocus();
    QTRY_VERIFY_WITH_TIMEOUT(w.stack()->hasFocus(), timeout);
    QList<QWidget *> expected;
    for (ZoneCard *card : w.cards()) {
        expected.append(card->findChild<QToolButton *>(QStringLiteral("pin-button")));
        expected.append(card->findChild<QToolButton *>(QStringLiteral("rename-button")));
    }
    QList<QWidget *> reached;
    for (qsizetype i = 0; i < expected.size(); ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        reached.append(QApplication::focusWidget());
    }
    QCOMPARE(reached, expected);
}

void TestZoneCollectionView::accessibleActions()
{
    ListWindow w;
    ZoneCard *tokyo = w.card("Tokyo");
    QAccessibleInterface *card = QAccessible::queryAccessibleInterface(tokyo);
    QVERIFY(card && card->actionInterface());
    QCOMPARE(card->role(), QAccessible::ListItem);
    QCOMPARE(card->text(QAccessible::Name), QStringLiteral("Tokyo"));
    QCOMPARE(card->text(QAccessible::Description), QStringLiteral("09:30, JST \u00b7 +9h"));
    QAccessibleActionInterface *actions = card->actionInterface();
    actions->doAction(QStringLiteral("Move down"));
    QCOMPARE(w.panel.displayNames(), (QStringList{"Stockholm", "Office", "Tokyo", "London"}));
    actions->doAction(QStringLiteral("Pin"));
    QVERIFY(w.panel.store->zone(tokyo->zoneId())->isPinned);
    QVERIFY(actions->actionNames().contains(QStringLiteral("Unpin")));
    QVERIFY(card->text(QAccessible::Description).endsWith(QStringLiteral(", pinned")));
    actions->doAction(QStringLiteral("Copy time"));
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("Tokyo 09:30"));
    actions->doAction(QStringLiteral("Rename"));
    QCOMPARE(w.view->state().editingId(), tokyo->zoneId());
    actions->doAction(QStringLiteral("Remove city\u2026"));
    QCOMPARE(w.view->state().removingZone()->id, tokyo->zoneId());
    // Decoration is skipped by assistive technology.
    QVERIFY(
        QAccessible::queryAccessibleInterface(w.in("London", "zone-handle"))->state().invisible);
}

void TestZoneCollectionView::listSelectsAndRetiresCards()
{
    // What is announced, and when, is read over the real bus by the screen
    // reader walkthrough; here, what an assistive technology finds.
    ListWindow w;
    QAccessibleInterface *list = QAccessible::queryAccessibleInterface(w.stack());
    QCOMPARE(list->role(), QAccessible::List);
    QCOMPARE(list->text(QAccessible::Name), QStringLiteral("Your cities"));
    QCOMPARE(list->childCount(), 4);

    w.view->focusList();
    QTRY_VERIFY(w.stack()->hasFocus());
    QTest::keyClick(w.stack(), Qt::Key_Down);
    QAccessibleInterface *tokyo = list->child(1);
    QVERIFY(tokyo->state().selected && tokyo->state().focused);
    QVERIFY(!list->child(0)->state().selected);
    QCOMPARE(list->focusChild(), tokyo);
    QCOMPARE(list->indexOfChild(tokyo), 1);

    // A removed card leaves the list at once and is never given an interface again.
    QPointer<ZoneCard> removed = w.card("Tokyo");
    w.panel.store->remove(removed->zoneId());
    QVERIFY(AccessibleRetirement::isRetired(removed));
    QCOMPARE(list->childCount(), 3);
    for (int i = 0; i < list->childCount(); ++i)
        QVERIFY(list->child(i)->object() != removed.data());
    QVERIFY(QAccessible::queryAccessibleInterface(removed)->role() != QAccessible::ListItem);
    QTRY_VERIFY(removed.isNull());
}

void TestZoneCollectionView::reduceMotionIsReadFromTheEnvironment()
{
    // The test runs with ZONARA_REDUCE_MOTION=1.
    PanelFixture panel(fourZones());
    QVERIFY(ZoneCollectionView(*panel.store, *panel.clock, false).reduceMotion());
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
    ZoneCard *london = w.card("London");
    ZoneCard *stockholm = w.card("Stockholm");
    const int topY = stockholm->y();

    // A move: London to the top at once or sliding there, Stockholm one place down.
    w.panel.store->move({3}, 0);
    QCOMPARE(london->y() == topY, reduceMotion);
    QTRY_COMPARE_WITH_TIMEOUT(london->y(), topY, timeout);
    QTRY_COMPARE_WITH_TIMEOUT(stockholm->y(), topY + london->height() + 8, timeout);

    // The highlight: lit at once, or fading in.
    enter(london);
    QCOMPARE(london->highlightAmount() == 1.0, reduceMotion);
    QTRY_COMPARE_WITH_TIMEOUT(london->highlightAmount(), 1.0, timeout);
}

void TestZoneCollectionView::noNativeSelectionHighlight()
{
    ListWindow w;
    const QColor native(0, 120, 215);
    QPalette palette = w.window.palette();
    palette.setColor(QPalette::Highlight, native);
    w.window.setPalette(palette);
    w.clickSubtitle("Tokyo");
    QCOMPARE(w.view->state().selectedId(), w.panel.id(1));
    const QImage shot = w.view->grab().toImage().convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < shot.height(); ++y) {
        for (int x = 0; x < shot.width(); ++x)
            QVERIFY(QColor(shot.pixel(x, y)) != native);
    }
}

void TestZoneCollectionView::highlightRecoloursWithThePalette()
{
    ListWindow w;
    w.view->focusList();
    ZoneCard *card = w.cards().constFirst();
    QVERIFY(card->state().isHighlighted);
    const auto border = [card] { return card->grab().toImage().pixelColor(card->width() / 2, 0); };
    // Half the accent over the card background washed with 6 % of it.
    const auto expected = [](const QColor &accent, const QColor &base) {
        const auto over = [](const QColor &top, qreal alpha, const QColor &bottom) {
            const auto mix = [alpha](int a, int b) { return qRound(a * alpha + b * (1 - alpha)); };
            return QColor(mix(top.red(), bottom.red()), mix(top.green(), bottom.green()),
                          mix(top.blue(), bottom.blue()));
        };
        return over(accent, 0.5, over(accent, 0.06, base));
    };
    const auto near = [](const QColor &a, const QColor &b) {
        return qAbs(a.red() - b.red()) <= 3 && qAbs(a.green() - b.green()) <= 3 &&
               qAbs(a.blue() - b.blue()) <= 3;
    };
    QVERIFY2(near(border(), expected(AppStyle::accent(false), Qt::white)),
             qPrintable(border().name()));

    QPalette dark = w.window.palette();
    dark.setColor(QPalette::Window, QColor(0x2b, 0x2b, 0x2d));
    dark.setColor(QPalette::Base, QColor(0x36, 0x36, 0x39));
    dark.setColor(QPalette::WindowText, QColor(0xec, 0xec, 0xec));
    w.window.setPalette(dark);
    QVERIFY2(near(border(), expected(AppStyle::accent(true), QColor(0x36, 0x36, 0x39))),
             qPrintable(border().name()));
}

QTEST_MAIN(TestZoneCollectionView)
#include "tst_zonecollectionview.moc"
