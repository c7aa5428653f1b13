#include "AppStyle.h"
#include "InitialFieldFocus.h"
#include "InlineEditButton.h"
#include "NameField.h"
#include "PanelTestSupport.h"
#include "TextLine.h"
#include "ZoneRow.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int timeout = 5000;
// 00:30 UTC: 01:30 in Stockholm, 09:30 in Tokyo.
const QDateTime instant(QDate(2026, 3, 2), QTime(0, 30), QTimeZone::utc());

ZoneRow::State stateFor(const SavedZone &zone)
{
    ZoneRow::State state;
    state.zone = zone;
    state.now = instant;
    state.localZone = QTimeZone("Europe/Stockholm");
    return state;
}

struct RowWindow
{
    explicit RowWindow(const ZoneRow::State &state, int width = 360)
    {
        auto *layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 0, 0, 0);
        row = new ZoneRow(state, &window);
        layout->addWidget(row);
        layout->addStretch(1);
        window.resize(width, 120);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
    }
    template<typename T> T *find(const QString &name) const { return row->findChild<T *>(name); }
    InlineEditButton *inlineButton(const QString &title) const
    {
        for (InlineEditButton *button : row->findChildren<InlineEditButton *>()) {
            if (button->title() == title)
                return button;
        }
        return nullptr;
    }
    [[nodiscard]] bool startRenaming(const QString &draft)
    {
        ZoneRow::State state = row->state();
        state.isRenaming = true;
        state.draftName = draft;
        row->setState(state);
        return row->nameField() &&
               QTest::qWaitFor([this] { return row->nameField()->initialFocus().didFocus(); },
                               timeout) &&
               row->nameField()->hasFocus();
    }

    QWidget window;
    ZoneRow *row;
};

// The colour of the most opaque pixel of a pixmap, with that alpha.
QColor strongestPixel(const QPixmap &pixmap)
{
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    QColor strongest(0, 0, 0, 0);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            if (colour.alpha() > strongest.alpha())
                strongest = colour;
        }
    }
    return strongest;
}

bool sameRgb(const QColor &a, const QColor &b)
{
    return qAbs(a.red() - b.red()) <= 2 && qAbs(a.green() - b.green()) <= 2 &&
           qAbs(a.blue() - b.blue()) <= 2;
}

} // namespace

class TestZoneRow final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsOfTheZone_data();
    void textsOfTheZone();
    void handleLook_data();
    void handleLook();
    void pinButton_data();
    void pinButton();
    void buttonsFollowRenaming();
    void renameEndings_data();
    void renameEndings();
    void typingReportsTheDraft();
    void gesturesBeginRenaming();
    void timeIsNeverCut();
    void clockTickUpdatesInPlace();
};

void TestZoneRow::textsOfTheZone_data()
{
    QTest::addColumn<SavedZone>("zone");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("subtitle");
    QTest::addColumn<QString>("time");
    QTest::addColumn<QString>("timeName");
    QTest::newRow("city") << makeZone(QStringLiteral("Europe/Stockholm")) << "Stockholm"
                          << "CET \u00B7 local"
                          << "01:30"
                          << "Time in Stockholm: 01:30";
    QTest::newRow("nickname") << makeZone(QStringLiteral("Europe/Stockholm"),
                                          QStringLiteral("Home"))
                              << "Home"
                              << "Stockholm \u00B7 CET \u00B7 local"
                              << "01:30"
                              << "Time in Home: 01:30";
    QTest::newRow("unknown zone") << makeZone(QStringLiteral("Mars/Olympus_Mons")) << "Olympus Mons"
                                  << "Mars/Olympus_Mons"
                                  << "--:--"
                                  << "Time in Olympus Mons: --:--";
}

void TestZoneRow::textsOfTheZone()
{
    QFETCH(SavedZone, zone);
    QFETCH(QString, name);
    QFETCH(QString, subtitle);
    QFETCH(QString, time);
    QFETCH(QString, timeName);
    RowWindow w(stateFor(zone));
    QCOMPARE(w.find<TextLine>("zone-name")->text(), name);
    QCOMPARE(w.find<TextLine>("zone-subtitle")->text(), subtitle);
    QCOMPARE(w.find<TextLine>("zone-time")->text(), time);
    QCOMPARE(w.find<TextLine>("zone-time")->accessibleName(), timeName);
    QCOMPARE(w.find<QToolButton>("rename-button")->accessibleName(), "Rename " + name);
    QCOMPARE(w.find<QToolButton>("rename-button")->toolTip(), QStringLiteral("Edit nickname"));
}

void TestZoneRow::handleLook_data()
{
    QTest::addColumn<bool>("highlighted");
    QTest::addColumn<bool>("canReorder");
    QTest::addColumn<QString>("colour");
    QTest::addColumn<int>("alpha");
    QTest::newRow("resting") << false << true << "secondary" << qRound(255 * 0.5 * 0.3);
    QTest::newRow("highlighted") << true << true << "accent" << qRound(255 * 0.9);
    QTest::newRow("reorder off") << false << false << "none" << 0;
    QTest::newRow("highlighted, reorder off") << true << false << "none" << 0;
}

void TestZoneRow::handleLook()
{
    QFETCH(bool, highlighted);
    QFETCH(bool, canReorder);
    QFETCH(QString, colour);
    QFETCH(int, alpha);
    ZoneRow::State state = stateFor(makeZone(QStringLiteral("Asia/Tokyo")));
    RowWindow reference(state);
    const int nameX = reference.find<TextLine>("zone-name")->mapTo(reference.row, QPoint()).x();

    state.isReorderHighlighted = highlighted;
    state.canReorder = canReorder;
    RowWindow w(state);
    auto *handle = w.find<QLabel>("zone-handle");
    QCOMPARE(handle->width(), 10);
    QCOMPARE(handle->toolTip(), QStringLiteral("Drag to reorder"));
    // The name starts at the same place whatever the handle shows.
    QCOMPARE(w.find<TextLine>("zone-name")->mapTo(w.row, QPoint()).x(), nameX);
    const QColor drawn = strongestPixel(handle->pixmap());
    QVERIFY2(qAbs(drawn.alpha() - alpha) <= 2, qPrintable(QString::number(drawn.alpha())));
    if (colour == "accent")
        QVERIFY(sameRgb(drawn, AppStyle::accent(w.row->palette())));
    else if (colour == "secondary")
        QVERIFY(sameRgb(drawn, w.row->palette().color(QPalette::WindowText)));
}

void TestZoneRow::pinButton_data()
{
    QTest::addColumn<bool>("pinned");
    QTest::addColumn<QString>("tip");
    QTest::addColumn<QString>("name");
    QTest::newRow("pinned") << true << "Unpin from menu bar"
                            << "Unpin Tokyo";
    QTest::newRow("not pinned") << false << "Pin to menu bar"
                                << "Pin Tokyo";
}

void TestZoneRow::pinButton()
{
    QFETCH(bool, pinned);
    QFETCH(QString, tip);
    QFETCH(QString, name);
    RowWindow w(stateFor(makeZone(QStringLiteral("Asia/Tokyo"), std::nullopt, pinned)));
    auto *pin = w.find<QToolButton>("pin-button");
    QCOMPARE(pin->toolTip(), tip);
    QCOMPARE(pin->accessibleName(), name);
    QCOMPARE(pin->size(), QSize(28, 32));
    const QColor drawn = strongestPixel(pin->icon().pixmap(QSize(16, 16), 2.0));
    const QColor expected =
        pinned ? AppStyle::accent(w.row->palette()) : w.row->palette().color(QPalette::WindowText);
    QVERIFY(sameRgb(drawn, expected));
    QSignalSpy toggled(w.row, &ZoneRow::togglePinRequested);
    QTest::mouseClick(pin, Qt::LeftButton);
    QCOMPARE(toggled.count(), 1);
}

void TestZoneRow::buttonsFollowRenaming()
{
    RowWindow w(stateFor(makeZone(QStringLiteral("Europe/Stockholm"), QStringLiteral("Home"))));
    InlineEditButton *cancel = w.inlineButton(QStringLiteral("Cancel rename (Escape)"));
    InlineEditButton *save = w.inlineButton(QStringLiteral("Save name (Return)"));
    QVERIFY(cancel && save);
    QVERIFY(!cancel->isVisible() && !save->isVisible());
    QVERIFY(w.find<QToolButton>("pin-button")->isVisible());
    QVERIFY(!w.row->nameField());

    QVERIFY(w.startRenaming(QStringLiteral("Home")));
    NameField *field = w.row->nameField();
    QCOMPARE(field->objectName(), QStringLiteral("city-nickname"));
    QCOMPARE(field->text(), QStringLiteral("Home"));
    QCOMPARE(field->placeholderText(), QStringLiteral("City name"));
    QCOMPARE(field->accessibleName(), QStringLiteral("Nickname for Stockholm"));
    QCOMPARE(field->height(), 26);
    QVERIFY(!w.find<TextLine>("zone-name")->isVisible());
    QVERIFY(cancel->isVisible() && save->isVisible());
    QVERIFY(cancel->x() < save->x());
    QCOMPARE(save->size(), QSize(28, 32));
    QVERIFY(!w.find<QToolButton>("pin-button")->isVisible());
    QVERIFY(!w.find<QToolButton>("rename-button")->isVisible());

    ZoneRow::State state = w.row->state();
    state.isRenaming = false;
    w.row->setState(state);
    QTRY_VERIFY_WITH_TIMEOUT(!w.row->findChild<NameField *>(), timeout);
    QVERIFY(w.find<TextLine>("zone-name")->isVisible());
    QVERIFY(!save->isVisible());
}

void TestZoneRow::renameEndings_data()
{
    QTest::addColumn<QString>("ending");
    QTest::addColumn<int>("saves");
    QTest::addColumn<int>("cancels");
    QTest::newRow("Return") << "return" << 1 << 0;
    QTest::newRow("Escape") << "escape" << 0 << 1;
    QTest::newRow("Save button") << "save" << 1 << 0;
    QTest::newRow("Cancel button") << "cancel" << 0 << 1;
    QTest::newRow("click elsewhere") << "elsewhere" << 1 << 0;
}

void TestZoneRow::renameEndings()
{
    QFETCH(QString, ending);
    QFETCH(int, saves);
    QFETCH(int, cancels);
    RowWindow w(stateFor(makeZone(QStringLiteral("Asia/Tokyo"))));
    QVERIFY(w.startRenaming(QStringLiteral("Tokyo")));
    NameField *field = w.row->nameField();
    QSignalSpy saved(w.row, &ZoneRow::saveRenameRequested);
    QSignalSpy cancelled(w.row, &ZoneRow::cancelRenameRequested);
    QSignalSpy drafts(w.row, &ZoneRow::draftNameEdited);
    QTest::keyClicks(field, QStringLiteral("Team"));

    if (ending == "return")
        QTest::keyClick(field, Qt::Key_Return);
    else if (ending == "escape")
        QTest::keyClick(field, Qt::Key_Escape);
    else if (ending == "save")
        QTest::mouseClick(w.inlineButton(QStringLiteral("Save name (Return)")), Qt::LeftButton);
    else if (ending == "cancel")
        QTest::mouseClick(w.inlineButton(QStringLiteral("Cancel rename (Escape)")), Qt::LeftButton);
    else
        QTest::mouseClick(w.find<TextLine>("zone-time"), Qt::LeftButton);

    QCOMPARE(saved.count(), saves);
    QCOMPARE(cancelled.count(), cancels);
    QCOMPARE(drafts.last().at(0).toString(), QStringLiteral("Team"));
    if (ending == "save")
        QVERIFY(field->hasFocus());
}

void TestZoneRow::typingReportsTheDraft()
{
    RowWindow w(stateFor(makeZone(QStringLiteral("Asia/Tokyo"))));
    QVERIFY(w.startRenaming(QStringLiteral("Tokyo")));
    QSignalSpy drafts(w.row, &ZoneRow::draftNameEdited);
    QTest::keyClick(w.row->nameField(), Qt::Key_End);
    QTest::keyClicks(w.row->nameField(), QStringLiteral("!?"));
    QCOMPARE(drafts.count(), 2);
    QCOMPARE(drafts.at(0).at(0).toString(), QStringLiteral("Tokyo!"));
    QCOMPARE(drafts.at(1).at(0).toString(), QStringLiteral("Tokyo!?"));
    // The owner echoing the draft back leaves the caret where it is.
    ZoneRow::State state = w.row->state();
    state.draftName = QStringLiteral("Tokyo!?");
    QTest::keyClick(w.row->nameField(), Qt::Key_Left);
    w.row->setState(state);
    QCOMPARE(w.row->nameField()->cursorPosition(), 6);
}

void TestZoneRow::gesturesBeginRenaming()
{
    RowWindow w(stateFor(makeZone(QStringLiteral("Asia/Tokyo"))));
    QSignalSpy begun(w.row, &ZoneRow::beginRenameRequested);
    QTest::mouseDClick(w.find<TextLine>("zone-name"), Qt::LeftButton);
    QCOMPARE(begun.count(), 1);
    QTest::mouseClick(w.find<QToolButton>("rename-button"), Qt::LeftButton);
    QCOMPARE(begun.count(), 2);
    // A double-click on the time is not a rename of the row's own.
    QTest::mouseDClick(w.find<TextLine>("zone-time"), Qt::LeftButton);
    QCOMPARE(begun.count(), 2);
    QCOMPARE(w.find<QWidget>("zone-name-block")->toolTip(),
             QStringLiteral("Double-click to rename. Drag to reorder."));
    QCOMPARE(w.find<TextLine>("zone-name")->toolTip(), QStringLiteral("Double-click to rename"));
}

void TestZoneRow::timeIsNeverCut()
{
    RowWindow w(stateFor(makeZone(QStringLiteral("America/Argentina/Rio_Gallegos"),
                                  QStringLiteral("A rather long nickname for a city"))),
                260);
    auto *time = w.find<TextLine>("zone-time");
    auto *name = w.find<TextLine>("zone-name");
    QVERIFY(time->width() >= time->sizeHint().width());
    QVERIFY(name->width() < name->sizeHint().width());
    QVERIFY(time->geometry().right() < w.find<QToolButton>("pin-button")->geometry().left());
    // Digits of the time face all have the same advance, so the time never shifts.
    const QFontMetrics metrics(time->font());
    for (const QChar digit : QStringLiteral("0123456789"))
        QCOMPARE(metrics.horizontalAdvance(digit), metrics.horizontalAdvance(u'0'));
}

void TestZoneRow::clockTickUpdatesInPlace()
{
    RowWindow w(stateFor(makeZone(QStringLiteral("Asia/Tokyo"))));
    QVERIFY(w.startRenaming(QStringLiteral("Tok")));
    NameField *field = w.row->nameField();
    auto *time = w.find<TextLine>("zone-time");
    field->setCursorPosition(1);
    ZoneRow::State state = w.row->state();
    state.now = instant.addSecs(60);
    w.row->setState(state);
    QCOMPARE(w.row->nameField(), field);
    QCOMPARE(w.find<TextLine>("zone-time"), time);
    QCOMPARE(time->text(), QStringLiteral("09:31"));
    QCOMPARE(field->cursorPosition(), 1);
    QVERIFY(field->hasFocus());
}

QTEST_MAIN(TestZoneRow)
#include "tst_zonerow.moc"
