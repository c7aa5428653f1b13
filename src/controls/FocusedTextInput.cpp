#include "FocusedTextInput.h"

#include "InitialFieldFocus.h"

#include <QGuiApplication>
#include <QKeyEvent>

namespace {

bool endsEdit(const QKeyEvent *event)
{
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    if (modifiers != Qt::NoModifier)
        return false;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
        return true;
    default:
        return false;
    }
}

} // namespace

FocusedTextInput::FocusedTextInput(const QString &placeholder, QFont::Weight weight,
                                   QWidget *parent)
    : QLineEdit(parent)
    , m_initialFocus(new InitialFieldFocus(this))
{
    QFont font = QGuiApplication::font();
    font.setPixelSize(14);
    font.setWeight(weight);
    setFont(font);
    setPlaceholderText(placeholder);
    setFrame(true);
    // Gives up width before its neighbours do.
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    connect(this, &QLineEdit::textEdited, this, [this] { m_finished = false; });
    m_initialFocus->attach();
}

FocusedTextInput::~FocusedTextInput() = default;

void FocusedTextInput::setSelectsAllOnFocus(bool selectsAll)
{
    m_initialFocus->setSelectsAll(selectsAll);
}

void FocusedTextInput::setBoundText(const QString &text)
{
    if (this->text() != text)
        setText(text);
}

void FocusedTextInput::commitOnFocusLoss()
{
    if (m_finished)
        return;
    m_finished = true;
    Q_EMIT focusLost(text());
}

bool FocusedTextInput::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // Escape belongs to the edit, not to a window shortcut that closes the panel.
        if (endsEdit(static_cast<QKeyEvent *>(event))) {
            event->accept();
            return true;
        }
        break;
    case QEvent::ParentChange:
        m_initialFocus->attach();
        break;
    default:
        break;
    }
    return QLineEdit::event(event);
}

void FocusedTextInput::keyPressEvent(QKeyEvent *event)
{
    if (!endsEdit(event)) {
        QLineEdit::keyPressEvent(event);
        return;
    }
    event->accept();
    m_finished = true;
    if (event->key() == Qt::Key_Escape)
        Q_EMIT cancelRequested();
    else
        Q_EMIT saveRequested(text());
}
