#pragma once

#include <QIcon>
#include <QImage>
#include <QList>

// The tray globe, drawn from the resource :/icons/globe.svg.
namespace GlobeIcon {

// The square sizes hosts pick from, in pixels.
QList<int> sizes();
// The globe at size x size, premultiplied ARGB32, transparent around it.
QImage image(int size);
// All sizes, for QSystemTrayIcon (needs a QGuiApplication).
QIcon icon();

} // namespace GlobeIcon
