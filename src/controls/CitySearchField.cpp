#include "CitySearchField.h"

#include "TintedIcon.h"

#include <QAction>
#include <QEvent>

CitySearchField::CitySearchField(const QString &placeholder, QWidget *parent)
    : FocusedTextInput(placeholder, QFont::Normal, parent)
    , m_searchIcon(new QAction(this))
{
    m_searchIcon->setObjectName(QStringLiteral("search-icon"));
    setClearButtonEnabled(true);
    addAction(m_searchIcon, QLineEdit::LeadingPosition);
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
