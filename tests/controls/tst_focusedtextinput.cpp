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

// A window holding a name field, an ordinary button and an inline button.
struct NameWindow
{
    NameWindow()
    {
        window->resize(320, 200);
        auto *layout = new QVBoxLayout(window.get());
        field = new NameField(window.get());
        other = new QPushButton(QStringLiteral("Elsewhere"), window.get());
        save = new InlineEditButton(QStringLiteral(":/icons/search.svg"),
                                    QStringLiteral("Save name (Return)"), window.get());
        layout->addWidget(field);
        layout->addWidget(other);
        layout->addWidget(save);
        layout->addStretch(1);
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
    void pressBackground() { press(window.get(), Qt::LeftButton, {10, window->height() - 5}); }
    static void press(QWidget *widget, Qt::MouseButton button = Qt::LeftButton, QPoint at = {})
    {
        QTest::mousePress(widget, button, Qt::NoModifier, at);
        QTest::mouseRelease(widget, button, Qt::NoModifier, at);
    }

    std::unique_ptr<QWidget> window = std::make_unique<QWidget>();
    NameField *field;
    QPushButton *other;
    InlineEditButton *save;
};

[[nodiscard]] bool activate(QWidget &window)
{
    window.show();
    window.raise();
    window.activateWindow();
    return QTest::qWaitFor([&window] { return window.isActiveWindow(); }, timeout);
}

} // namespace

class TestFocusedTextInput final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keyEndsTheEditOnce_data();
    void keyEndsTheEditOnce();
    void pressDecidesFocusLoss_data();
    void pressDecidesFocusLoss();
    void eachEditEndsOnce();
    void windowDeactivationCommitsOnce();
    void deactivationBeforeInitialFocusDoesNothing();
    void initialFocusActivatesTheWindowOnce();
    void movingToAnotherWindowFocusesAgain();
    void boundText_data();
    void boundText();
    void searchFieldOnlyReportsKeys();
};

void TestFocusedTextInput::keyEndsTheEditOnce_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("saves");
    QTest::newRow("Return saves") << int(Qt::Key_Return) << 1;
    QTest::newRow("Escape cancels") << int(Qt::Key_Escape) << 0;
}

void TestFocusedTextInput::keyEndsTheEditOnce()
{
    QFETCH(int, key);
    QFETCH(int, saves);
    NameWindow w;
    // The panel closes on Escape; inside the field, Escape ends the edit instead.
    QShortcut close(QKeySequence(Qt::Key_Escape), w.window.get());
    QSignalSpy closed(&close, &QShortcut::activated);
    QVERIFY(w.showFocused());
    QSignalSpy saved(w.field, &FocusedTextInput::saveRequested);
    QSignalSpy cancelled(w.field, &FocusedTextInput::cancelRequested);
    QSignalSpy lost(w.field, &FocusedTextInput::focusLost);
    QSignalSpy edited(w.field, &QLineEdit::textEdited);

    QTest::keyClicks(w.field, QStringLiteral("abc"));
    QCOMPARE(edited.count(), 3);
    // To the focus widget, as a real key press goes.
    QTest::keyClick(static_cast<QWidget *>(nullptr), Qt::Key(key));
    QCOMPARE(closed.count(), 0);
    QCOMPARE(saved.count(), saves);
    QCOMPARE(cancelled.count(), 1 - saves);
    if (saves)
        QCOMPARE(saved.at(0).at(0).toString(), QStringLiteral("abc"));
    QVERIFY(w.field->isFinished());

    // A press elsewhere or the window losing activation afterwards ends nothing more.
    NameWindow::press(w.other);
    QWidget other;
    QVERIFY(activate(other));
    QCOMPARE(lost.count(), 0);
    QCOMPARE(saved.count() + cancelled.count(), 1);
}

void TestFocusedTextInput::pressDecidesFocusLoss_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<bool>("commits");
    QTest::newRow("inside the field") << "field" << Qt::LeftButton << false;
    QTest::newRow("on an inline action") << "save" << Qt::LeftButton << false;
    QTest::newRow("elsewhere in the window") << "other" << Qt::LeftButton << true;
    QTest::newRow("right button elsewhere") << "other" << Qt::RightButton << true;
    QTest::newRow("middle button elsewhere") << "other" << Qt::MiddleButton << false;
    QTest::newRow("on the window background") << "background" << Qt::LeftButton << true;
    QTest::newRow("in another window") << "another window" << Qt::LeftButton << false;
    QTest::newRow("while the field is hidden") << "hidden" << Qt::LeftButton << false;
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
    QSignalSpy clicked(w.save, &QToolButton::clicked);
    QPushButton elsewhere(QStringLiteral("Another window"));
    if (target == "another window") {
        elsewhere.show();
        QVERIFY(QTest::qWaitForWindowExposed(&elsewhere));
        NameWindow::press(&elsewhere);
    } else if (target == "background") {
        w.pressBackground();
    } else {
        if (target == "hidden")
            w.field->hide();
        NameWindow::press(target == "field"  ? static_cast<QWidget *>(w.field)
                          : target == "save" ? static_cast<QWidget *>(w.save)
                                             : w.other,
                          button);
    }
    QCOMPARE(lost.count(), commits ? 1 : 0);
    if (commits)
        QCOMPARE(lost.at(0).at(0).toString(), QStringLiteral("Office"));
    // An inline action works without taking the edit away from the field.
    QCOMPARE(clicked.count(), target == "save" ? 1 : 0);
    if (target == "save")
        QVERIFY(w.field->hasFocus() && !w.field->isFinished());
}

void TestFocusedTextInput::eachEditEndsOnce()
{
    NameWindow w;
    QVERIFY(w.showFocused());
    QSignalSpy lost(w.field, &FocusedTextInput::focusLost);
    NameWindow::press(w.other);
    w.pressBackground();
    QCOMPARE(lost.count(), 1);

    // Typing starts a new edit, which can end again.
    w.field->setFocus();
    QTest::keyClicks(w.field, QStringLiteral("x"));
    QVERIFY(!w.field->isFinished());
    NameWindow::press(w.other);
    QCOMPARE(lost.count(), 2);
}

void TestFocusedTextInput::windowDeactivationCommitsOnce()
{
    NameWindow w;
    QVERIFY(w.showFocused(QStringLiteral("Home")));
    QSignalSpy lost(w.field, &FocusedTextInput::focusLost);
    QWidget other;
    QVERIFY(activate(other));
    QTRY_COMPARE_WITH_TIMEOUT(lost.count(), 1, timeout);
    QCOMPARE(lost.at(0).at(0).toString(), QStringLiteral("Home"));

    // Coming back and leaving again within the same edit ends nothing.
    QVERIFY(activate(*w.window));
    QVERIFY(activate(other));
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

void TestFocusedTextInput::initialFocusActivatesTheWindowOnce()
{
    QWidget other;
    QVERIFY(activate(other));
    NameWindow w;
    w.field->setBoundText(QStringLiteral("Stockholm"));
    w.window->show();
    QTRY_VERIFY_WITH_TIMEOUT(w.window->isActiveWindow(), timeout);
    QTRY_VERIFY_WITH_TIMEOUT(w.field->initialFocus().didFocus(), timeout);
    QVERIFY(w.field->hasFocus());
    QCOMPARE(w.field->selectedText(), QStringLiteral("Stockholm"));

    // Once given, the focus is not taken back when the window is activated again.
    w.other->setFocus();
    QVERIFY(activate(other));
    QVERIFY(activate(*w.window));
    QTRY_VERIFY_WITH_TIMEOUT(w.other->hasFocus(), timeout);
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
    QVERIFY(activate(*w.window));

    w.field->setParent(&second);
    QVERIFY(!w.field->initialFocus().didFocus());
    w.field->show();
    QTRY_VERIFY_WITH_TIMEOUT(second.isActiveWindow(), timeout);
    QTRY_VERIFY_WITH_TIMEOUT(w.field->initialFocus().didFocus(), timeout);
    QVERIFY(w.field->hasFocus());
}

void TestFocusedTextInput::boundText_data()
{
    QTest::addColumn<QString>("bound");
    QTest::addColumn<int>("expectedCursor");
    // The field shows "Stockholm" with the caret after "Stock".
    QTest::newRow("same text keeps the caret") << "Stockholm" << 5;
    QTest::newRow("empty text empties the field") << "" << 0;
    QTest::newRow("other text replaces it") << "Home" << 4;
}

void TestFocusedTextInput::boundText()
{
    QFETCH(QString, bound);
    QFETCH(int, expectedCursor);
    NameWindow w;
    QVERIFY(w.showFocused(QStringLiteral("Stockholm")));
    w.field->setCursorPosition(5);
    w.field->setBoundText(bound);
    QCOMPARE(w.field->text(), bound);
    QCOMPARE(w.field->cursorPosition(), expectedCursor);
}

void TestFocusedTextInput::searchFieldOnlyReportsKeys()
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
    // Every Return counts: the search never finishes.
    QTest::keyClicks(field, QStringLiteral("Osl"));
    QTest::keyClick(field, Qt::Key_Return);
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(saved.count(), 2);
    QTest::keyClick(field, Qt::Key_Escape);
    QCOMPARE(cancelled.count(), 1);
    QCOMPARE(field->text(), QStringLiteral("Osl"));
    // Leaving it is no commit.
    NameWindow::press(button);
    QWidget other;
    QVERIFY(activate(other));
    QCOMPARE(lost.count(), 0);
}

QTEST_MAIN(TestFocusedTextInput)
#include "tst_focusedtextinput.moc"
