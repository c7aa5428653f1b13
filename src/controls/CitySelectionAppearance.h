#pragma once

class QWidget;

// The zone list draws its own card highlight and nothing else. It is a stack
// of cards, not an item view, so no native selection highlight exists there;
// should a list ever be built on an item view, this turns that view's own
// highlight off so that the card highlight stays the only one.
namespace CitySelectionAppearance {

// Starting from a widget inside a list: when the enclosing scroll area is an
// item view, its selection no longer paints the palette's highlight. Anything
// else is left as it is.
void switchOffNativeHighlight(QWidget *widget);

} // namespace CitySelectionAppearance
