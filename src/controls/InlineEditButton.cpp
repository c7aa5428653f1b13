#include "InlineEditButton.h"

#include "TintedIcon.h"

#include <QEvent>

const QString InlineEditButton::editActionName = QStringLiteral("inline-rename-action");

InlineEditButton::InlineEditButton(const QString &symbolPath, const QString &title, QWidget *parent)
    : QToolButton(parent)
    , m_symbolPath(symbolPath)
{
    setObjectName(editActionName);
    setFocusPolicy(Qt::NoFocus);
    setAutoRaise(true);
    setToolButtonStyle(Qt::ToolButtonIconOnly);
    setIconSize(QSize(16, 16));
    setTitle(title);
    updateSymbol();
}

void InlineEditButton::setSymbolPath(const QString &symbolPath)
{
    if (m_symbolPath == symbolPath)
        return;
    m_symbolPath = symbolPath;
    updateSymbol();
}

void InlineEditButton::setTitle(const QString &title)
{
    m_title = title;
    setToolTip(title);
    setAccessibleName(title);
    setAccessibleDescription(QString());
}

void InlineEditButton::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        updateSymbol();
    QToolButton::changeEvent(event);
}

void InlineEditButton::updateSymbol()
{
    setIcon(TintedIcon::icon(m_symbolPath, palette().color(QPalette::WindowText), iconSize()));
}
