#pragma once

#include <QColor>
#include <QFont>
#include <QIcon>
#include <QPalette>
#include <QPixmap>
#include <QString>

// The program's look: one accent colour, one hairline colour, the secondary
// text colour, the two font faces and our symbols. Every colour is computed
// from the palette it is drawn with, so a switch between light and dark
// recolours each widget on its next paint.
namespace AppStyle {

// "WorldAccent": warm orange on dark, deep rust on light.
QColor accent(bool isDark);
QColor accent(const QPalette &palette);

// Dark when the window background is dark.
bool isDark(const QPalette &palette);

// The resting border of a card: the text colour at 9 % opacity.
QColor line(const QPalette &palette);

// The palette with the accent in place of the highlight and link colours,
// so that selections, focus and tinted controls take it.
QPalette tinted(const QPalette &palette);

// Error lines: a red that reads on either background.
QColor errorText(const QPalette &palette);

// Captions and second lines: the text colour at half opacity (55 % on dark).
QColor secondaryText(const QPalette &palette);

// The system UI face at a size in logical pixels.
QFont uiFont(qreal pixelSize, QFont::Weight weight = QFont::Normal);
// The system's fixed-pitch face: times and captions whose digits never shift.
QFont monospacedFont(qreal pixelSize, QFont::Weight weight = QFont::Normal);

// The resource path of one of our symbols, e.g. "pin" or "arrow-up".
QString symbolPath(const QString &name);
QIcon symbol(const QString &name, const QColor &color, int size);
QPixmap symbolPixmap(const QString &name, const QColor &color, int size, qreal devicePixelRatio);

} // namespace AppStyle
