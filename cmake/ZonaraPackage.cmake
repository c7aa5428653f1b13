# "cpack -G DEB" in a build configured for /usr (tools/build-deb.sh does it all).

set(ZONARA_PACKAGE_MAINTAINER "Zonara developers <zonara@users.noreply.github.com>" CACHE STRING
    "Maintainer field of the .deb")

set(CPACK_PACKAGE_NAME zonara)
set(CPACK_PACKAGE_VENDOR "Zonara developers")
set(CPACK_PACKAGE_CONTACT "${ZONARA_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "world clock for the panel and the command line")
set(CPACK_PACKAGE_DESCRIPTION
    "Zonara keeps a short, ordered list of cities, each a time zone with an
optional nickname, and shows the times of the pinned ones as one line of text
in the panel's tray. Clicking it opens a panel to add cities from a catalogue
of cities, countries and time zones, rename, reorder and pin them and copy
their times. Every city and setting is also reachable from the command line,
for scripts and status bars such as waybar and polybar.")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
# The bus service file is written at install time with the final prefix.
set(CPACK_SET_DESTDIR ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://github.com/zonara/zonara")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Qt's xcb and wayland platform plugins and the zone database are loaded at
# run time, so dpkg-shlibdeps cannot see them.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, tzdata")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "gnome-shell-extension-appindicator")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

include(CPack)
