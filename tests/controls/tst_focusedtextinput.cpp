#include "CitySearchField.h"
#include "InitialFieldFocus.h"
#include "InlineEditButton.h"
#include "NameField.h"

#include <QApplication>
#include <QPushButton>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <memory>

namespace {

constexpr int timeout = 5000;

// A window holding a name field, an ordinary button and the two inline
// buttons, laid out one under the other.
struct NameWindow
{
    NameWindow()
    {
        window->setObjectName(QStringLiteral("name-window"));
        window->resize(320, 200);
        auto *layout = new QVBoxLayout(window.get());
        field = new NameField(window.get());
        field->setObjectName(QStringLiteral("city-nickname"));
        other = new QPushButton(QStringLiteral("Elsewhere"), window.get());
        save = new InlineEditButton(QStringLiteral(":/icons/search.svg"),
                                    QStringLiteral("Save name (Return)"), window.get());
        hiddenSave = new InlineEditButton(QStringLiteral(":/icons/search.svg"),
                                          QStringLiteral("Hidden"), window.get());
        layout->addWidget(field);
        layout->addWidget(other);
        layout->addWidget(save);
        layout->addWidget(hiddenSave);
        layout->addStretch(1);
        hiddenSave->hide();
    }

    // Qt may focus the first child itself; this waits for our own attempt too.
    [[nodiscard]] bool showFocused(const QString &text = QString())
    {
        field->setBoundText(text);
        window->show();
        return QTest::qWaitForWindowExposed(window.get()) &&
               QTest::qWaitFor([this] { return field->initialFocus().didFocus(); }, timeout) &&
               field->hasFocus();
    }

    std::unique_ptr<QWidget> window = std::make_unique<QWidget>();
    NameField *field;
    QPushButton *other;
    InlineEditButton *save;
    InlineEditButton *hiddenSave;
};

void press(QWidget *widget, Qt::MouseButton button = Qt::LeftButton, QPoint at = QPoint())
{
    QTest::mousePress(widget, button, Qt::NoModifier, at);
    QTest::mouseRelease(widget, button, Qt::NoModifier, at);
}

[[nodiscard]] bool activateOther(QWidget &other)
{
    other.show();
    other.raise();
    other.activateWindow();
    return QTest::qWaitFor([&other] { return other.isActiveWindow(); }, timeout);
}

} // namespace

class TestFocusedTextInput final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void returnSavesOnce_data();
    void returnSavesOnce();
    void escapeCancelsAndNothingAfter();
    void escapeIsNotAWindowShortcut();
    void pressDecidesFocusLoss_data();
    void pressDecidesFocusLoss();
    void pressInAnotherWindowDoesNothing();
    void eachEditEndsOnce();
    void windowDeactivationCommits();
    void deactivationBeforeInitialFocusDoesNothing();
    void initialFocusActivatesTheWindow();
    void initialFocusIsGivenOnce();
    void movingToAnotherWindowFocusesAgain();
    void hiddenFieldIgnoresPresses();
    void boundText_data();
    void boundText();
    void searchFieldReportsKeystrokes();
    void searchFieldIgnoresFocusLoss();
    void searchFieldHasIconAndClearButton();
};

void TestFocusedTextInput::returnSavesOnce_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("Return") << int(Qt::Key_Return) << Qt::KeyboardModifiers();
    QTest::newRow("keypad Enter") << int(Qt::Key_Enter)
                                  << Qt::KeyboardModifiers(Qt::KeypadModifier);
}

void TestFocusedTextInput::returnSavesOnce()
{
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    NameWindow w;
    QVERIFY(w.showFocused());
    QSignalSpy saved(w.field, &FocusedTextInput::saveRequested);
    QSignalSpy edited(w.field, &QLineEdit::textEdited);
    QSignalSpy lost(w.field, &FocusedTextInput::focusLost);
    QSignalSpy cancelled(w.field, &FocusedTextInput::cancelRequested);

    QTest::keyClicks(w.field, QStringLiteral("abc"));
    QCOMPARE(edited.count(), 3);
    QCOMPARE(edited.last().at(0).toString(), QStringLiteral("abc"));
    QTest::keyClick(w.field, Qt::Key(key), modifiers);
    QCOMPARE(saved.count(), 1);
    QCOMPARE(saved.at(0).at(0).toString(), QStringLiteral("abc"));
    QVERIFY(w.field->isFinished());

    // The window losing activation afterwards ends nothing more.
    QWidget other;
    QVERIFY(activateOther(other));
    press(w.other);
    QCOMPARE(lost.count(), 0);
    QCOMPARE(cancelled.count(), 0);
    QCOMPARE(saved.count(), 1);
}

void TestFocusedTextInput::escapeCancelsAndNothingAfter()
{
    NameWindow w;
    QVERIFY(w.showFocused(QStringLiteral("Home")));
    QSignalSpy saved(w.field, &FocusedTextInput::saveRequested);
    QSignalSpy lost(w.field, &FocusedTextInput::focusLost);
    QSignalSpy cancelled(w.field, &FocusedTextInput::cancelRequested);

    QTest::keyClick(w.field, Qt::Key_Escape);
    QCOMPARE(cancelled.count(), 1);
    press(w.other);
    QWidget other;
    QVERIFY(activateOther(other));
    QCOMPARE(lost.count(), 0);
    QCOMPARE(saved.count(), 0);
    QCOMPARE(cancelled.count(), 1);
}

void TestFocusedTextInput::escapeIsNotAWindowShortcut()
{
    // The panel closes on Escape; inside the field, Escape cancels the edit instead.
    NameWindow w;
    QShortcut close(QKeySequence(Qt::Key_Escape), w.window.get());
    QSignalSpy closed(&close, &QShortcut::activated);
    QVERIFY(w.showFocused());
    QSignalSpy cancelled(w.field, &FocusedTextInput::cancelRequested);
    // To the focus widget, as a real key press goes.
    QTest::keyClick(static_cast<QWidget *>(nullptr), Qt::Key_Escape);
    QCOMPARE(cancelled.count(), 1);
    QCOMPARE(closed.count(), 0);
}

void TestFocusedTextInput::pressDecidesFocusLoss_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<bool>("commits");
    QTest::newRow("inside the field") << "field" << Qt::LeftButton << false;
    QTest::newRow("on a visible inline action") << "save" << Qt::LeftButton << false;
    QTest::newRow("elsewhere in the window") << "other" << Qt::LeftButton << true;
    QTest::newRow("right button elsewhere") << "other" << Qt::RightButton << true;
    QTest::newRow("middle button elsewhere") << "other" << Qt::MiddleButton << false;
    QTest::newRow("on the window background") << "window" << Qt::LeftButton << true;
}

void TestFocusedTextInput::pressDecidesFocusLoss()
{
    QFETCH(QString, target);
    QFETCH(Qt::MouseButton, button);
    QFETCH(bool, commits);
    NameWindow w;
    QVERIFY(w.showFocused());
    QTest::keyClicks(w.field, QStringLiteral("Office"));
    QSignalSpy lost(w.field, &FocusedTextInput::focusLost);

    QWidget *widget = target == "field"   ? static_cast<QWidget *>(w.field)
                      : target == "save"  ? static_cast<QWidget *>(w.save)
                      : target == "other" ? static_cast<QWidget *>(w.other)
                                          : w.window.get();
    // The window's own background: a point below every child.
    const QPoint at = target == "window" ? QPoint(10, w.window->height() - 5) : QPoint();
    press(widget, button, at);
    QCOMPARE(lost.count(), commits ? 1 : 0);
    if (commits)
        QCOMPARE(lost.at(0).at(0).toString(), QStringLiteral("Office"));
}

void TestFocusedTextInput::pressInAnotherWindowDoesNothing()
{
    NameWindow w;
    QVERIFY(w.showFocused());
    QSignalSpy lost(w.field, &FocusedTextInput::focusLost);
    QPushButton elsewhere(QStringLiteral("Another window"));
    elsewhere.show();
    QVERIFY(QTest::qWaitForWindowExposed(&elsewhere));
    press(&elsewhere);
    QCOMPARE(lost.count(), 0);
}

void TestFocusedTextInput::eachEditEndsOnce()
{
    NameWindow w;
    QVERIFY(w.showFocused());
    QSignalSpy lost(w.field, &FocusedTextInput::focusLost);
    press(w.other);
    press(w.window.get(), Qt::LeftButton, QPoint(10, w.window->height() - 5));
    QCOMPARE(lost.count(), 1);

    // Typing starts a new edit, which can end again.
    w.field->setFocus();
    QTest::keyClicks(w.field, QStringLiteral("x"));
    QVERIFY(!w.field->isFinished());
    press(w.other);
    QCOMPARE(lost.count(), 2);
}

void TestFocusedTextInput::windowDeactivationCommits()
{
    NameWindow w;
    QVERIFY(w.showFocused(QStringLiteral("Home")));
    QSignalSpy lost(w.field, &FocusedTextInput::focusLost);
    QWidget other;
    QVERIFY(activateOther(other));
    QTRY_COMPARE_WITH_TIMEOUT(lost.count(), 1, timeout);
    QCOMPARE(lost.at(0).at(0).toString(), QStringLiteral("Home"));

    // Coming back and leaving again within the same edit ends nothing.
    w.window->activateWindow();
    QTRY_VERIFY_WITH_TIMEOUT(w.window->isActiveWindow(), timeout);
    QVERIFY(activateOther(other));
    QCOMPARE(lost.count(), 1);
}

void TestFocusedTextInput::deactivationBeforeInitialFocusDoesNothing()
{
    NameWindow w;
    QSignalSpy lost(w.field, &FocusedTextInput::focusLost);
    w.window->show();
    // Before the first turn of the event loop the initial focus has not been given.
    QVERIFY(!w.field->initialFocus().didFocus());
    QEvent deactivate(QEvent::WindowDeactivate);
    QApplication::sendEvent(w.field, &deactivate);
    QCOMPARE(lost.count(), 0);

    QTRY_VERIFY_WITH_TIMEOUT(w.field->initialFocus().didFocus(), timeout);
    QApplication::sendEvent(w.field, &deactivate);
    QCOMPARE(lost.count(), 1);
}

void TestFocusedTextInput::initialFocusActivatesTheWindow()
{
    QWidget other;
    QVERIFY(activateOther(other));
    NameWindow w;
    w.field->setBoundText(QStringLiteral("Stockholm"));
    w.window->show();
    QTRY_VERIFY_WITH_TIMEOUT(w.window->isActiveWindow(), timeout);
    QTRY_VERIFY_WITH_TIMEOUT(w.field->initialFocus().didFocus(), timeout);
    QVERIFY(w.field->hasFocus());
    QCOMPARE(w.field->selectedText(), QStringLiteral("Stockholm"));
}

void TestFocusedTextInput::initialFocusIsGivenOnce()
{
    NameWindow w;
    QVERIFY(w.showFocused());
    w.other->setFocus();
    QWidget other;
    QVERIFY(activateOther(other));
    w.window->activateWindow();
    QTRY_VERIFY_WITH_TIMEOUT(w.window->isActiveWindow(), timeout);
    QTRY_VERIFY_WITH_TIMEOUT(w.other->hasFocus(), timeout);
    // A few turns of the event loop: nothing takes the focus back to the field.
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    QVERIFY(w.other->hasFocus());
}

void TestFocusedTextInput::movingToAnotherWindowFocusesAgain()
{
    NameWindow w;
    QVERIFY(w.showFocused());
    QWidget second;
    second.resize(300, 80);
    second.show();
    QVERIFY(QTest::qWaitForWindowExposed(&second));
    w.window->activateWindow();
    QTRY_VERIFY_WITH_TIMEOUT(w.window->isActiveWindow(), timeout);

    w.field->setParent(&second);
    QVERIFY(!w.field->initialFocus().didFocus());
    w.field->show();
    QTRY_VERIFY_WITH_TIMEOUT(second.isActiveWindow(), timeout);
    QTRY_VERIFY_WITH_TIMEOUT(w.field->initialFocus().didFocus(), timeout);
    QVERIFY(w.field->hasFocus());
}

void TestFocusedTextInput::hiddenFieldIgnoresPresses()
{
    NameWindow w;
    QVERIFY(w.showFocused());
    QSignalSpy lost(w.field, &FocusedTextInput::focusLost);
    w.field->hide();
    press(w.other);
    QCOMPARE(lost.count(), 0);
}

void TestFocusedTextInput::boundText_data()
{
    QTest::addColumn<QString>("bound");
    QTest::addColumn<QString>("expectedText");
    QTest::addColumn<int>("expectedCursor");
    // The field shows "Stockholm" with the caret after "Stock".
    QTest::newRow("same text keeps the caret") << "Stockholm"
                                               << "Stockholm" << 5;
    QTest::newRow("empty text empties the field") << ""
                                                  << "" << 0;
    QTest::newRow("other text replaces it") << "Home"
                                            << "Home" << 4;
}

void TestFocusedTextInput::boundText()
{
    QFETCH(QString, bound);
    QFETCH(QString, expectedText);
    QFETCH(int, expectedCursor);
    NameWindow w;
    QVERIFY(w.showFocused(QStringLiteral("Stockholm")));
    w.field->setCursorPosition(5);
    w.field->setBoundText(bound);
    QCOMPARE(w.field->text(), expectedText);
    QCOMPARE(w.field->cursorPosition(), expectedCursor);
}

void TestFocusedTextInput::searchFieldReportsKeystrokes()
{
    QWidget window;
    auto *field =
        new CitySearchField(QStringLiteral("Search city, country, or time zone"), &window);
    window.resize(300, 60);
    QSignalSpy edited(field, &QLineEdit::textEdited);
    QSignalSpy saved(field, &FocusedTextInput::saveRequested);
    QSignalSpy cancelled(field, &FocusedTextInput::cancelRequested);
    window.show();
    QTRY_VERIFY_WITH_TIMEOUT(field->initialFocus().didFocus(), timeout);
    QTest::keyClicks(field, QStringLiteral("Osl"));
    QCOMPARE(edited.count(), 3);
    QCOMPARE(edited.at(1).at(0).toString(), QStringLiteral("Os"));
    QTest::keyClick(field, Qt::Key_Return);
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(saved.count(), 2);
    QTest::keyClick(field, Qt::Key_Escape);
    QCOMPARE(cancelled.count(), 1);
    QCOMPARE(field->text(), QStringLiteral("Osl"));
}

void TestFocusedTextInput::searchFieldIgnoresFocusLoss()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *field = new CitySearchField(QStringLiteral("Search"), &window);
    auto *button = new QPushButton(QStringLiteral("Elsewhere"), &window);
    layout->addWidget(field);
    layout->addWidget(button);
    window.show();
    QTRY_VERIFY_WITH_TIMEOUT(field->initialFocus().didFocus(), timeout);
    QSignalSpy lost(field, &FocusedTextInput::focusLost);
    QSignalSpy saved(field, &FocusedTextInput::saveRequested);
    QSignalSpy cancelled(field, &FocusedTextInput::cancelRequested);
    press(button);
    QWidget other;
    QVERIFY(activateOther(other));
    QCOMPARE(lost.count(), 0);
    QCOMPARE(saved.count(), 0);
    QCOMPARE(cancelled.count(), 0);
}

void TestFocusedTextInput::searchFieldHasIconAndClearButton()
{
    CitySearchField field(QStringLiteral("Search city, country, or time zone"));
    QVERIFY(field.isClearButtonEnabled());
    QCOMPARE(field.placeholderText(), QStringLiteral("Search city, country, or time zone"));
    QCOMPARE(field.font().pixelSize(), 14);
    QCOMPARE(field.font().weight(), QFont::Normal);
    // The search icon is a leading action with a real image.
    const auto *icon = field.findChild<QAction *>(QStringLiteral("search-icon"));
    QVERIFY(icon);
    QVERIFY(!icon->icon().pixmap(16).isNull());
    NameField name;
    QCOMPARE(name.font().weight(), QFont::Medium);
}

QTEST_MAIN(TestFocusedTextInput)
#include "tst_focusedtextinput.moc"
