#pragma once

class QObject;
class QWidget;

// Retiring widgets from assistive technology before they are destroyed.
//
// A screen reader may ask about any object at any time, and Qt would answer
// through an interface whose widget is already half torn down. So a widget
// on its way out is announced as gone while it is still whole, the cached
// interfaces of it and everything inside it are dropped, and our own
// interfaces are never made again for it.
namespace AccessibleRetirement {

// Announces the widget as destroyed and drops its interfaces and those of
// its descendants. The widget itself is left as it is.
void retire(QWidget *widget);

// Retires the widget, hides it and deletes it once control returns to the
// event loop (the press that removed it may still be on its way out of it).
void deleteLater(QWidget *widget);

// Whether the object was retired; interface factories make nothing for it.
bool isRetired(const QObject *object);

} // namespace AccessibleRetirement
