#include "CitySearchField.h"

#include "DecorativeAccessible.h"
#include "TintedIcon.h"

#include <QAction>
#include <QEvent>
#include <QToolButton>

CitySearchField::CitySearchField(const QString &placeholder, QWidget *parent)
    : FocusedTextInput(placeholder, QFont::Normal, parent)
    , m_searchIcon(new QAction(this))
{
    m_searchIcon->setObjectName(QStringLiteral("search-icon"));
    setClearButtonEnabled(true);
    addAction(m_searchIcon, QLineEdit::LeadingPosition);
    // The magnifier only decorates; the clear button is one a screen reader can press.
    for (QToolButton *button : findChildren<QToolButton *>()) {
        if (button->defaultAction() == m_searchIcon) {
            DecorativeAccessible::hide(button);
        } else {
            button->setAccessibleName(QStringLiteral("Clear search"));
            button->setToolTip(QStringLiteral("Clear search"));
        }
    }
    updateSearchIcon();
}

void CitySearchField::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        updateSearchIcon();
    FocusedTextInput::changeEvent(event);
}

void CitySearchField::updateSearchIcon()
{
    m_searchIcon->setIcon(TintedIcon::icon(QStringLiteral(":/icons/search.svg"),
                                           palette().color(QPalette::PlaceholderText),
                                           QSize(16, 16)));
}
