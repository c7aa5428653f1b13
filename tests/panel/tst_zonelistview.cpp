#include "AddZoneView.h"
#include "Eyebrow.h"
#include "PanelTestSupport.h"
#include "ShiftStrip.h"
#include "TextLine.h"
#include "ZoneCard.h"
#include "ZoneCollectionView.h"
#include "ZoneListView.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

class TestZoneListView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void countFollowsTheStore();
    void saveErrorShowsWhileSavingFails();
    void addCitySwapsTheContent();
    void hidingReturnsToTheList();
    void addingSavesAnOpenRename();
    void footerCommands_data();
    void footerCommands();
    void updateButtonFollowsTheUpdater();
    void keyboardEntersTheList_data();
    void keyboardEntersTheList();
    void confirmationAndNewCityScrollIntoView();
    void shiftedListReturnsToNow_data();
    void shiftedListReturnsToNow();

private:
    QPushButton *button(const char *name) const { return m_view->findChild<QPushButton *>(name); }

    std::unique_ptr<PanelFixture> m_fixture;
    std::unique_ptr<ZoneListView> m_view;
};

void TestZoneListView::init()
{
    m_fixture = std::make_unique<PanelFixture>(QList<SavedZone>{
        makeZone(QStringLiteral("Europe/Stockholm")), makeZone(QStringLiteral("Asia/Tokyo")),
        makeZone(QStringLiteral("America/New_York"), QStringLiteral("NY office"))});
    m_view = std::make_unique<ZoneListView>(*m_fixture->store, *m_fixture->clock);
    m_view->show();
    m_view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
}

void TestZoneListView::cleanup()
{
    m_view.reset();
    m_fixture.reset();
}

void TestZoneListView::countFollowsTheStore()
{
    QCOMPARE(m_view->size(), QSize(400, 480));
    auto *count = m_view->findChild<Eyebrow *>("city-count");
    QCOMPARE(count->text(), QStringLiteral("YOUR CITIES \u00b7 3"));
    m_fixture->store->remove(m_fixture->id(0));
    QCOMPARE(count->text(), QStringLiteral("YOUR CITIES \u00b7 2"));
    m_fixture->store->setZones({});
    QCOMPARE(count->text(), QStringLiteral("YOUR CITIES \u00b7 0"));
}

void TestZoneListView::saveErrorShowsWhileSavingFails()
{
    auto *line = m_view->findChild<TextLine *>("save-error");
    QVERIFY(line);
    QVERIFY(!line->isVisible());
    m_fixture->preferences.setSavesFail(true);
    m_fixture->store->togglePin(m_fixture->id(0));
    QVERIFY(line->isVisible());
    QVERIFY(line->text().contains(QStringLiteral("could not be saved")));
    QCOMPARE(line->tone(), TextLine::Tone::secondary);
    m_fixture->preferences.setSavesFail(false);
    m_fixture->store->togglePin(m_fixture->id(1));
    QVERIFY(!line->isVisible());
}

void TestZoneListView::addCitySwapsTheContent()
{
    QVERIFY(!m_view->isShowingAdd());
    QTest::mouseClick(button("add-city-button"), Qt::LeftButton);
    QVERIFY(m_view->isShowingAdd());
    QVERIFY(m_view->addView()->isVisible());
    QVERIFY(!m_view->collection().isVisible());
    QVERIFY(!button("open-settings")->isVisible());

    // Choosing a city closes the search and shows the list with it.
    auto *field = m_view->addView()->findChild<QLineEdit *>("city-search");
    QTRY_VERIFY(field->hasFocus());
    QTest::keyClicks(field, QStringLiteral("auckland"));
    QTest::keyClick(field, Qt::Key_Down);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QTRY_VERIFY(!m_view->isShowingAdd());
    QVERIFY(m_view->collection().isVisible());
    QCOMPARE(m_fixture->store->zones().size(), 4);
    QCOMPARE(m_fixture->store->zones().last().identifier, QStringLiteral("Pacific/Auckland"));

    // A fresh search each time: nothing typed before survives.
    QTest::mouseClick(button("add-city-button"), Qt::LeftButton);
    QCOMPARE(m_view->addView()->query(), QString());
    QTest::mouseClick(m_view->addView()->findChild<QPushButton *>("add-city-close"),
                      Qt::LeftButton);
    QTRY_VERIFY(!m_view->isShowingAdd());
    QCOMPARE(m_fixture->store->zones().size(), 4);
}

void TestZoneListView::hidingReturnsToTheList()
{
    QTest::mouseClick(button("add-city-button"), Qt::LeftButton);
    QVERIFY(m_view->isShowingAdd());
    m_view->hide();
    m_view->show();
    QVERIFY(!m_view->isShowingAdd());
    QVERIFY(m_view->collection().isVisible());
}

void TestZoneListView::addingSavesAnOpenRename()
{
    auto *rename = m_view->collection().findChildren<QWidget *>("rename-button").value(1);
    QVERIFY(rename);
    QTest::mouseClick(rename, Qt::LeftButton);
    auto *nickname = m_view->findChild<QLineEdit *>("city-nickname");
    QVERIFY(nickname);
    QTRY_VERIFY(nickname->hasFocus());
    nickname->selectAll();
    QTest::keyClicks(nickname, QStringLiteral("Tokyo HQ"));
    QTest::mouseClick(button("add-city-button"), Qt::LeftButton);
    QCOMPARE(m_fixture->store->zones().at(1).customLabel,
             std::optional(QStringLiteral("Tokyo HQ")));
}

void TestZoneListView::footerCommands_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<QString>("expected");
    QTest::newRow("settings button") << "click:open-settings"
                                     << "settings";
    QTest::newRow("Ctrl+,") << "key:settings"
                            << "settings";
    QTest::newRow("quit button") << "click:quit"
                                 << "quit";
    QTest::newRow("Ctrl+Q") << "key:quit"
                            << "quit";
    QTest::newRow("Return on Settings") << "return:open-settings"
                                        << "settings";
    QTest::newRow("Return on Quit") << "return:quit"
                                    << "quit";
    QTest::newRow("Return on Add city") << "return:add-city-button"
                                        << "add";
}

void TestZoneListView::footerCommands()
{
    QFETCH(QString, how);
    QFETCH(QString, expected);
    QSignalSpy settings(m_view.get(), &ZoneListView::settingsRequested);
    QSignalSpy quit(m_view.get(), &ZoneListView::quitRequested);
    QCOMPARE(button("open-settings")->text(), QStringLiteral("Settings\u2026"));
    if (how.startsWith(u"click:")) {
        QTest::mouseClick(button(qPrintable(how.mid(6))), Qt::LeftButton);
    } else if (how.startsWith(u"return:")) {
        QPushButton *target = button(qPrintable(how.mid(7)));
        target->setFocus(Qt::TabFocusReason);
        QTRY_VERIFY(target->hasFocus());
        QTest::keyClick(target, Qt::Key_Return);
        QTRY_COMPARE(m_view->isShowingAdd(), expected == u"add");
    } else if (how == u"key:settings") {
        QTest::keyClick(m_view->windowHandle(), Qt::Key_Comma, Qt::ControlModifier);
    } else {
        QTest::keyClick(m_view->windowHandle(), Qt::Key_Q, Qt::ControlModifier);
    }
    QTRY_COMPARE(settings.count(), expected == u"settings" ? 1 : 0);
    QTRY_COMPARE(quit.count(), expected == u"quit" ? 1 : 0);
}

void TestZoneListView::updateButtonFollowsTheUpdater()
{
    QPushButton *update = button("tray-check-updates");
    QCOMPARE(update->toolTip(), QStringLiteral("Check for Updates\u2026"));
    QCOMPARE(update->accessibleName(), QStringLiteral("Check for Updates\u2026"));
    QSignalSpy requested(m_view.get(), &ZoneListView::updateCheckRequested);
    QVERIFY(!update->isEnabled());
    QTest::mouseClick(update, Qt::LeftButton);
    QCOMPARE(requested.count(), 0);
    m_view->setCanCheckForUpdates(true);
    QTest::mouseClick(update, Qt::LeftButton);
    QCOMPARE(requested.count(), 1);
}

void TestZoneListView::keyboardEntersTheList_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Down") << int(Qt::Key_Down);
    QTest::newRow("Tab") << int(Qt::Key_Tab);
}

void TestZoneListView::keyboardEntersTheList()
{
    QFETCH(int, key);
    QPushButton *add = button("add-city-button");
    add->setFocus(Qt::TabFocusReason);
    QTRY_VERIFY(add->hasFocus());
    QTest::keyClick(add, Qt::Key(key));
    QWidget *list = m_view->collection().focusTarget();
    QTRY_VERIFY(list->hasFocus());
    // The first card is selected and shows the keyboard's ring.
    QCOMPARE(m_view->collection().state().selectedId(), m_fixture->id(0));
    QTest::keyClick(list, Qt::Key_Down);
    QCOMPARE(m_view->collection().state().selectedId(), m_fixture->id(1));

    // Back and Return from the search land on the list too.
    QTest::mouseClick(add, Qt::LeftButton);
    QPushButton *back = m_view->addView()->findChild<QPushButton *>("add-city-close");
    back->setFocus(Qt::TabFocusReason);
    QTRY_VERIFY(back->hasFocus());
    QTest::keyClick(back, Qt::Key_Return);
    QTRY_VERIFY(!m_view->isShowingAdd());
    QTRY_VERIFY(list->hasFocus());
}

void TestZoneListView::confirmationAndNewCityScrollIntoView()
{
    const QStringList identifiers{"Europe/Stockholm", "Asia/Tokyo",      "Europe/London",
                                  "America/New_York", "Europe/Paris",    "Australia/Sydney",
                                  "Asia/Kolkata",     "America/Chicago", "Africa/Cairo",
                                  "America/Lima",     "Asia/Singapore",  "Europe/Berlin"};
    QList<SavedZone> zones;
    for (const QString &identifier : identifiers)
        zones.append(makeZone(identifier));
    m_view.reset();
    m_fixture = std::make_unique<PanelFixture>(zones);
    m_view = std::make_unique<ZoneListView>(*m_fixture->store, *m_fixture->clock);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    const auto fullyShown = [](QWidget *widget) {
        return widget && widget->visibleRegion().boundingRect() == widget->rect();
    };

    const QList<ZoneCard *> cards = m_view->collection().findChildren<ZoneCard *>();
    ZoneCard *last = *std::max_element(cards.cbegin(), cards.cend(),
                                       [](ZoneCard *a, ZoneCard *b) { return a->y() < b->y(); });
    auto *remove = last->findChild<QPushButton *>("remove-confirm");
    QVERIFY(!fullyShown(last));
    last->requestAction(ZoneMenu::Action::remove);
    QTRY_VERIFY(fullyShown(remove));

    // Scrolled back to the top, a city added at the end comes into view.
    m_view->collection().findChild<QScrollArea *>()->verticalScrollBar()->setValue(0);
    m_fixture->store->add(QStringLiteral("Pacific/Auckland"));
    ZoneCard *added = nullptr;
    for (ZoneCard *card : m_view->collection().findChildren<ZoneCard *>()) {
        if (card->state().row.zone.identifier == QStringLiteral("Pacific/Auckland"))
            added = card;
    }
    QTRY_VERIFY(fullyShown(added));
}

void TestZoneListView::shiftedListReturnsToNow_data()
{
    QTest::addColumn<QString>("way");
    QTest::newRow("Escape") << "Escape";
    QTest::newRow("Back to now") << "Back to now";
    QTest::newRow("closing the panel") << "hide";
}

void TestZoneListView::shiftedListReturnsToNow()
{
    QFETCH(QString, way);
    ZoneCollectionView &list = m_view->collection();
    ShiftStrip &strip = m_view->shiftStrip();
    QVERIFY(!strip.isVisible());
    list.focusList();
    QTest::keyClick(list.focusTarget(), Qt::Key_Right, Qt::ShiftModifier);
    // 00:30 UTC, Stockholm first: an hour on from 01:30 there.
    QCOMPARE(strip.text(), QStringLiteral("+1 h \u00b7 Mon 02:30 in Stockholm"));
    QVERIFY(strip.isVisible());
    auto *tokyo = m_view->findChildren<ZoneCard *>().at(1)->findChild<TextLine *>("zone-time");
    QCOMPARE(tokyo->text(), QStringLiteral("10:30"));

    if (way == "Escape") {
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(list.focusTarget(), &escape);
        QVERIFY(escape.isAccepted());
        // At now Escape is the panel's again: it closes it.
        QKeyEvent again(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(list.focusTarget(), &again);
        QVERIFY(!again.isAccepted());
    } else if (way == "Back to now") {
        QTest::mouseClick(strip.backButton(), Qt::LeftButton);
        QVERIFY(list.focusTarget()->hasFocus());
    } else {
        m_view->hide();
        m_view->show();
    }
    QCOMPARE(list.shiftText(), QString());
    QVERIFY(!strip.isVisible());
    QCOMPARE(tokyo->text(), QStringLiteral("09:30"));
}

QTEST_MAIN(TestZoneListView)
#include "tst_zonelistview.moc"
