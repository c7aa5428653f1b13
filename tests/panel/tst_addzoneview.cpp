#include "AddZoneView.h"
#include "PanelTestSupport.h"
#include "ZoneResultsModel.h"

#include "CitySearchField.h"
#include "Eyebrow.h"

#include <QListView>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTest>

namespace {

// Monday 2 March 2026, 00:30 UTC.
const QDateTime at(QDate(2026, 3, 2), QTime(0, 30), QTimeZone::utc());
const QStringList suggested{"Tokyo", "Los Angeles", "New York", "London", "Stockholm", "UTC"};

} // namespace

class TestAddZoneView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void suggestionsWhenNothingIsTyped();
    void addedSuggestionIsCheckedAndDisabled_data();
    void addedSuggestionIsCheckedAndDisabled();
    void choosingSavesTheRightNickname_data();
    void choosingSavesTheRightNickname();
    void noResultsPlaceholderNamesTheQuery();
    void resultsAreCappedAndStartAtTheTop();
    void closing_data();
    void closing();
    void keyboardChooses_data();
    void keyboardChooses();

private:
    void show(const QList<SavedZone> &zones = {});
    void type(const QString &text);
    QStringList titles() const;
    QWidget *closeButton() const { return m_view->findChild<QPushButton *>("add-city-close"); }

    std::unique_ptr<PanelFixture> m_fixture;
    std::unique_ptr<AddZoneView> m_view;
    CitySearchField *m_field = nullptr;
    QListView *m_list = nullptr;
};

void TestAddZoneView::init()
{
    qputenv("TZ", "UTC");
}

void TestAddZoneView::cleanup()
{
    m_view.reset();
    m_fixture.reset();
}

void TestAddZoneView::show(const QList<SavedZone> &zones)
{
    m_fixture = std::make_unique<PanelFixture>(zones, at);
    m_view = std::make_unique<AddZoneView>(*m_fixture->store, *m_fixture->clock, true);
    m_view->resize(400, 480);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
    m_field = m_view->findChild<CitySearchField *>("city-search");
    m_list = m_view->findChild<QListView *>("add-city-results");
    QVERIFY(m_field);
    QVERIFY(m_list);
}

void TestAddZoneView::type(const QString &text)
{
    m_field->setFocus();
    QTest::keyClicks(m_field, text);
}

QStringList TestAddZoneView::titles() const
{
    QStringList titles;
    const ZoneResultsModel &model = m_view->results();
    for (int row = 0; row < model.rowCount(); ++row)
        titles.append(model.index(row).data(ZoneResultsModel::TitleRole).toString());
    return titles;
}

void TestAddZoneView::suggestionsWhenNothingIsTyped()
{
    show();
    QTRY_VERIFY(m_field->hasFocus());
    QCOMPARE(m_field->placeholderText(), QStringLiteral("Search city, country, or time zone"));
    QCOMPARE(m_field->accessibleName(), QStringLiteral("Search city, country, or time zone"));
    const Eyebrow *caption = m_view->findChild<Eyebrow *>("add-city-caption");
    QCOMPARE(caption->title(), QStringLiteral("A few places to start"));
    QCOMPARE(titles(), suggested);
    const ZoneResultsModel &model = m_view->results();
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex index = model.index(row);
        QVERIFY(model.flags(index) & Qt::ItemIsEnabled);
        QVERIFY(!index.data(ZoneResultsModel::AlreadyAddedRole).toBool());
        QCOMPARE(index.data(Qt::AccessibleTextRole).toString(),
                 QStringLiteral("Add ") + index.data(ZoneResultsModel::TitleRole).toString());
    }
    QCOMPARE(model.index(0).data(ZoneResultsModel::TimeRole).toString(), QStringLiteral("09:30"));
    QCOMPARE(model.index(1).data(ZoneResultsModel::TimeRole).toString(), QStringLiteral("16:30"));

    // The rows follow the clock and the store.
    m_fixture->clock->setNow(at.addSecs(3600));
    QCOMPARE(model.index(0).data(ZoneResultsModel::TimeRole).toString(), QStringLiteral("10:30"));
    m_fixture->store->setFormat(MenuBarFormat::labelTime12);
    QCOMPARE(model.index(0).data(ZoneResultsModel::TimeRole).toString(), QStringLiteral("10:30a"));
    m_fixture->store->add(QStringLiteral("UTC"));
    QVERIFY(model.index(5).data(ZoneResultsModel::AlreadyAddedRole).toBool());

    // A blank query is a search that still lists the suggestions.
    type(QStringLiteral("   "));
    QCOMPARE(caption->title(), QStringLiteral("Search results"));
    QCOMPARE(titles(), suggested);
}

void TestAddZoneView::addedSuggestionIsCheckedAndDisabled_data()
{
    QTest::addColumn<std::optional<QString>>("nickname");
    QTest::addColumn<bool>("added");
    QTest::newRow("saved plainly") << std::optional<QString>() << true;
    QTest::newRow("saved as Home") << std::optional<QString>(QStringLiteral("Home")) << false;
}

void TestAddZoneView::addedSuggestionIsCheckedAndDisabled()
{
    QFETCH(std::optional<QString>, nickname);
    QFETCH(bool, added);
    show({makeZone(QStringLiteral("Europe/Stockholm"), nickname)});
    const QModelIndex stockholm = m_view->results().index(4);
    QCOMPARE(stockholm.data(ZoneResultsModel::AlreadyAddedRole).toBool(), added);
    QCOMPARE(bool(m_view->results().flags(stockholm) & Qt::ItemIsEnabled), !added);
    QCOMPARE(stockholm.data(Qt::AccessibleTextRole).toString(),
             added ? QStringLiteral("Stockholm, already added") : QStringLiteral("Add Stockholm"));
    QCOMPARE(stockholm.data(ZoneResultsModel::TimeRole).toString().isEmpty(), added);

    QSignalSpy closed(m_view.get(), &AddZoneView::closeRequested);
    QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {},
                      m_list->visualRect(stockholm).center());
    // A disabled row does nothing; an enabled one adds a second Stockholm.
    QCOMPARE(closed.count(), added ? 0 : 1);
    QCOMPARE(m_fixture->store->zones().size(), added ? 1 : 2);
    if (!added)
        QCOMPARE(m_fixture->store->zones().last().customLabel, std::nullopt);
}

void TestAddZoneView::choosingSavesTheRightNickname_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<std::optional<QString>>("nickname");
    QTest::newRow("named like its zone") << "stockholm"
                                         << "Europe/Stockholm" << std::optional<QString>();
    QTest::newRow("a city in another city's zone")
        << "malm"
        << "Europe/Stockholm" << std::optional<QString>(QStringLiteral("Malmö"));
    QTest::newRow("bare time zone") << "etc/gmt+1"
                                    << "Etc/GMT+10" << std::optional<QString>();
}

void TestAddZoneView::choosingSavesTheRightNickname()
{
    QFETCH(QString, query);
    QFETCH(QString, identifier);
    QFETCH(std::optional<QString>, nickname);
    show();
    type(query);
    const ZoneResultsModel &model = m_view->results();
    QVERIFY2(model.rowCount() > 0, qPrintable(query));
    int row = 0;
    while (row < model.rowCount() &&
           model.index(row).data(ZoneResultsModel::IdentifierRole).toString() != identifier)
        ++row;
    QVERIFY2(row < model.rowCount(), qPrintable(titles().join(u", ")));

    QSignalSpy closed(m_view.get(), &AddZoneView::closeRequested);
    QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {},
                      m_list->visualRect(model.index(row)).center());
    QCOMPARE(closed.count(), 1);
    QCOMPARE(m_fixture->store->zones().size(), 1);
    const SavedZone &saved = m_fixture->store->zones().first();
    QCOMPARE(saved.identifier, identifier);
    QCOMPARE(saved.customLabel, nickname);
    QVERIFY(!saved.isPinned);
}

void TestAddZoneView::noResultsPlaceholderNamesTheQuery()
{
    show();
    type(QStringLiteral("zzzz "));
    auto *pages = m_view->findChild<QStackedWidget *>();
    QWidget *placeholder = m_view->findChild<QWidget *>("add-city-no-results");
    QCOMPARE(pages->currentWidget(), placeholder);
    QVERIFY(placeholder->accessibleName().contains(QStringLiteral("\u201czzzz \u201d")));
    // Typing on brings the list back.
    m_field->selectAll();
    QTest::keyClicks(m_field, QStringLiteral("zur"));
    QCOMPARE(pages->currentWidget(), m_list);
}

void TestAddZoneView::resultsAreCappedAndStartAtTheTop()
{
    show();
    type(QStringLiteral("a"));
    QCOMPARE(m_view->results().rowCount(), 40);
    m_list->scrollToBottom();
    QVERIFY(m_list->verticalScrollBar()->value() > 0);
    QTest::keyClick(m_field, Qt::Key_N);
    QCOMPARE(m_list->verticalScrollBar()->value(), 0);
}

void TestAddZoneView::closing_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("Back") << "back";
    QTest::newRow("Escape in the field") << "escape-field";
    QTest::newRow("Escape in the list") << "escape-list";
}

void TestAddZoneView::closing()
{
    QFETCH(QString, how);
    show();
    QSignalSpy closed(m_view.get(), &AddZoneView::closeRequested);
    type(QStringLiteral("tok"));
    // Return in the field chooses nothing.
    QTest::keyClick(m_field, Qt::Key_Return);
    QCOMPARE(closed.count(), 0);
    QVERIFY(m_fixture->store->zones().isEmpty());

    QCOMPARE(static_cast<QPushButton *>(closeButton())->text(), QStringLiteral("Back"));
    if (how == u"back") {
        QTest::mouseClick(closeButton(), Qt::LeftButton);
    } else if (how == u"escape-field") {
        QTest::keyClick(m_field, Qt::Key_Escape);
    } else {
        QTest::keyClick(m_field, Qt::Key_Down);
        QTRY_VERIFY(m_list->hasFocus());
        QTest::keyClick(m_list, Qt::Key_Escape);
    }
    QCOMPARE(closed.count(), 1);
    QVERIFY(m_fixture->store->zones().isEmpty());
}

void TestAddZoneView::keyboardChooses_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Return") << int(Qt::Key_Return);
    QTest::newRow("Space") << int(Qt::Key_Space);
}

void TestAddZoneView::keyboardChooses()
{
    QFETCH(int, key);
    // Tokyo is already saved: moving down skips it.
    show({makeZone(QStringLiteral("Asia/Tokyo"))});
    QTRY_VERIFY(m_field->hasFocus());
    QTest::keyClick(m_field, Qt::Key_Down);
    QTRY_VERIFY(m_list->hasFocus());
    QCOMPARE(m_list->currentIndex().row(), 1);
    QTest::keyClick(m_list, Qt::Key_Down);
    QCOMPARE(m_list->currentIndex().row(), 2);
    QSignalSpy closed(m_view.get(), &AddZoneView::closeRequested);
    QTest::keyClick(m_list, Qt::Key(key));
    QCOMPARE(closed.count(), 1);
    QCOMPARE(m_fixture->store->zones().last().identifier, QStringLiteral("America/New_York"));
}

QTEST_MAIN(TestAddZoneView)
#include "tst_addzoneview.moc"
