#include "Eyebrow.h"

#include "AppStyle.h"

namespace {

QFont eyebrowFont()
{
    QFont font = AppStyle::monospacedFont(10, QFont::Medium);
    font.setLetterSpacing(QFont::AbsoluteSpacing, 1.5);
    return font;
}

} // namespace

Eyebrow::Eyebrow(const QString &title, QWidget *parent)
    : TextLine(eyebrowFont(), Tone::secondary, parent)
{
    setTitle(title);
}

void Eyebrow::setTitle(const QString &title)
{
    m_title = title;
    // The whole-text mapping, not a locale's: "Your cities · 12" reads YOUR CITIES · 12.
    setText(title.toUpper());
}
