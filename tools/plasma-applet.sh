#!/usr/bin/env bash
# The Plasma applet in a Plasma 5.27 panel (plasmoidviewer with the org.kde.panel
# containment), next to the real Zonara on a private session bus under Xvfb, in
# a throw-away configuration with four cities, two of them pinned.
#
#   tools/plasma-applet.sh [OUTDIR]
#
# Checks, reading the panel as a screen reader does (AT-SPI):
#   - the text shown in the panel is what "zonara line" prints, and the
#     applet's tooltip text is every city, as "zonara watch --json" lists them;
#   - a click opens Zonara's panel;
#   - with Zonara stopped, the panel shows the globe, and a click starts Zonara
#     through its D-Bus service file and opens its panel.
# Screenshots in OUTDIR: plasma-line.png, plasma-tooltip.png, plasma-panel.png,
# plasma-globe.png, plasma-started.png.
#
# Environment:
#   ZONARA_BUILD_DIR   build tree with bin/zonara (default build/dev)
set -euo pipefail

repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${ZONARA_BUILD_DIR:-$repo/build/dev}
zonara=$build/bin/zonara
applet_id=io.github.zonara.Zonara.applet

if [ "${1:-}" != --inside ]; then
    out=$(mkdir -p "${1:-$build/plasma-applet}" && cd "${1:-$build/plasma-applet}" && pwd)
    [ -x "$zonara" ] || { echo "plasma-applet: $zonara is not built" >&2; exit 1; }

    # Plasma 5.27 and its Qt 5, a panel containment, and the tools of the checks.
    packages=(plasma-sdk plasma-desktop plasma-workspace qtbase5-dev qtdeclarative5-dev
              xvfb xauth dbus dbus-x11 xdotool imagemagick at-spi2-core python3-pyatspi)
    missing=()
    for package in "${packages[@]}"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
            missing+=("$package")
    done
    if [ ${#missing[@]} -gt 0 ]; then
        echo "Installing: ${missing[*]}"
        sudo=""
        [ "$(id -u)" -ne 0 ] && sudo="sudo"
        $sudo apt-get update -qq
        DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends \
            "${missing[@]}"
    fi

    # The QML plugin, built on its own against Qt 5.
    cmake -S "$repo/resources/plasma" -B "$build/plasma" -G Ninja >/dev/null
    cmake --build "$build/plasma"

    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    export XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data XDG_CACHE_HOME=$work/cache
    mkdir -p "$XDG_CONFIG_HOME" "$XDG_DATA_HOME/dbus-1/services" "$XDG_CACHE_HOME"
    # What "cmake --install" puts in place: the bus may start Zonara on request.
    sed "s|@ZONARA_INSTALLED_BINARY@|$zonara|" \
        "$repo/resources/linux/io.github.zonara.Zonara.service.in" \
        >"$XDG_DATA_HOME/dbus-1/services/io.github.zonara.Zonara.service"
    # Zonara's globe, which the applet shows, where an install puts it.
    mkdir -p "$XDG_DATA_HOME/icons/hicolor/symbolic/apps"
    cp "$repo/resources/linux/io.github.zonara.Zonara-symbolic.svg" \
        "$XDG_DATA_HOME/icons/hicolor/symbolic/apps/"
    kpackagetool5 -t Plasma/Applet -i "$repo/resources/plasma/$applet_id" >/dev/null
    export QML2_IMPORT_PATH=$build/plasma/qml
    export TZ=${TZ:-Europe/Stockholm} QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 QT_ACCESSIBILITY=1
    export ZONARA_PLASMA_OUT=$out ZONARA_PLASMA_WORK=$work
    # The bus inside the display, so that a Zonara it starts can show windows.
    # Now and then Qt 5 never joins the accessibility bus of a session: a new
    # session, then.
    for attempt in 1 2 3; do
        status=0
        xvfb-run -a -s "-screen 0 1024x640x24" \
            dbus-run-session -- "${BASH_SOURCE[0]}" --inside || status=$?
        [ $status -ne 3 ] && exit $status
        rm -rf "$XDG_CONFIG_HOME/zonara"
    done
    exit $status
fi

# Inside the display and the private bus.
out=$ZONARA_PLASMA_OUT
work=$ZONARA_PLASMA_WORK
failed=0
check() { # what, condition...
    local what=$1
    shift
    if "$@"; then echo "PASS  $what"; else echo "FAIL  $what"; failed=1; fi
}

pids=()
cleanup() {
    set +e
    local pid
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
    pkill_zonara
    wait 2>/dev/null || true
}
# Zonara as the bus started it has no pid of ours: ask the bus for it.
zonara_pid() {
    dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
        org.freedesktop.DBus.GetConnectionUnixProcessID string:io.github.zonara.Zonara \
        2>/dev/null | sed -n 's/^ *uint32 //p' || true
}
pkill_zonara() {
    local pid
    pid=$(zonara_pid)
    [ -n "$pid" ] && kill "$pid" 2>/dev/null || true
}
trap cleanup EXIT

wait_until() { # seconds, command...
    local end=$((SECONDS + $1))
    shift
    until "$@"; do
        [ $SECONDS -ge $end ] && return 1
        sleep 0.2
    done
}
zonara_on_bus() { [ -n "$(zonara_pid)" ]; }
zonara_gone() { [ -z "$(zonara_pid)" ]; }

# The accessibility bus, as a desktop session has it.
/usr/libexec/at-spi-bus-launcher --launch-immediately >/dev/null 2>&1 &
pids+=($!)
# Qt 5 joins it only when asked to, as a screen reader asks.
a11y_on() {
    dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus \
        org.freedesktop.DBus.Properties.Set string:org.a11y.Status string:IsEnabled \
        variant:boolean:true >/dev/null 2>&1
}
wait_until 10 a11y_on || { echo "plasma-applet: no accessibility bus" >&2; exit 1; }
# The tray host a Plasma session has (kded's StatusNotifierWatcher), so that
# Zonara's own tray item registers as it would, instead of opening a window.
kded5 >"$work/kded.log" 2>&1 &
pids+=($!)
sni_watcher() {
    dbus-send --session --print-reply --dest=org.kde.kded5 /kded org.kde.kded5.loadModule \
        string:statusnotifierwatcher 2>/dev/null | grep -q 'boolean true'
}
wait_until 20 sni_watcher || { echo "plasma-applet: no StatusNotifierWatcher" >&2; exit 1; }

# The first edit also saves the city of the system's zone, unpinned.
"$zonara" add Asia/Tokyo --nickname Office --pin >/dev/null
"$zonara" add America/New_York --pin >/dev/null
"$zonara" add Europe/London >/dev/null

"$zonara" >"$work/zonara.log" 2>&1 &
pids+=($!)
wait_until 10 zonara_on_bus || { echo "plasma-applet: Zonara did not start" >&2; cat "$work/zonara.log" >&2; exit 1; }


# What the panel shows, read from the accessibility bus: the applet's label
# text (or "(globe)" when only the icon shows), and its tooltip text.
shown() {
    # Debian's own Python, where python3-pyatspi installs.
    /usr/bin/python3 - "$@" <<'EOF'
import sys
import pyatspi

def walk(node, found):
    try:
        if not node.getState().contains(pyatspi.STATE_SHOWING):
            return
        found.append(node)
        for i in range(node.childCount):
            child = node.getChildAtIndex(i)
            if child is not None:
                walk(child, found)
    except Exception:
        pass

desktop = pyatspi.Registry.getDesktop(0)
for app in desktop:
    if app is None or app.name != "plasmoidviewer":
        continue
    nodes = []
    walk(app, nodes)
    # The applet is the innermost button named after Zonara: Plasma wraps it
    # in a button of its own.
    buttons = [n for n in nodes if n.getRoleName() == "push button" and n.name.startswith("Zonara")]
    if not buttons:
        break
    applet = buttons[-1]
    inside = []
    walk(applet, inside)
    texts = [n.name for n in inside[1:] if n.getRoleName() == "label" and n.name]
    print(texts[0] if texts else "(globe)")
    print(applet.description)
    # Where to click, in screen coordinates.
    box = applet.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    print(box.x + box.width // 2, box.y + box.height // 2)
    sys.exit(0)
sys.exit(1)
EOF
}

applet_text() { shown | sed -n 1p; }
applet_tooltip() { shown | sed -n '2,$p' | sed '$d'; }
applet_centre() { shown | tail -n 1; }
text_is_line() { [ "$(applet_text)" = "$("$zonara" line)" ]; }
text_is_globe() { [ "$(applet_text)" = "(globe)" ]; }
cli_cities() {
    timeout 5 "$zonara" watch --json | head -n 1 |
        /usr/bin/python3 -c 'import json, sys; print(json.loads(sys.stdin.readline())["tooltip"])'
}
tooltip_is_cities() { [ "$(applet_tooltip)" = "$(cli_cities)" ]; }
# Zonara's panel window is mapped.
panel_shown() { xdotool search --onlyvisible --name '^Zonara$' >/dev/null 2>&1; }
panel_hidden() { ! panel_shown; }

# KDE's service cache, built now rather than on the viewer's first icon
# lookup. A viewer that starts slowly, or is read while still starting,
# never joins the accessibility bus: first the window, then a moment to settle.
kbuildsycoca5 >/dev/null 2>&1 || true
# The services a Plasma session starts before its panels, started now: the
# viewer waits on them while they come up.
for service in org.kde.ActivityManager org.kde.kglobalaccel; do
    dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
        org.freedesktop.DBus.StartServiceByName string:$service uint32:0 >/dev/null 2>&1 || true
done
viewer_mapped() { xdotool search --onlyvisible --class plasmoidviewer >/dev/null 2>&1; }
plasmoidviewer -c org.kde.panel -a "$applet_id" -f horizontal -l topedge -s 1024x36 \
    >"$work/viewer.log" 2>&1 &
pids+=($!)
if ! { wait_until 20 viewer_mapped && sleep 5 && wait_until 45 shown >/dev/null; }; then
    echo "plasma-applet: the applet is not on the accessibility bus" >&2
    exit 3
fi
# Breeze Dark, so that light text reads on plasmoidviewer's black (it draws no
# panel background). Only now: started with it, the viewer never joins the
# accessibility bus.
printf '[Theme]\nname=breeze-dark\n' >"$XDG_CONFIG_HOME/plasmarc"
sleep 2
# A minute may tick between the two reads: the wait reads both again.
check "the panel shows \"$("$zonara" line)\", as zonara line prints" wait_until 10 text_is_line
import -window root "$out/plasma-line.png"
check "the tooltip text lists every city as zonara watch does" wait_until 10 tooltip_is_cities

read -r x y < <(applet_centre)
xdotool mousemove "$x" "$y"
sleep 2
import -window root "$out/plasma-tooltip.png"

xdotool click 1
check "a click opens Zonara's panel" wait_until 10 panel_shown
sleep 1
import -window root "$out/plasma-panel.png"
xdotool key Escape
wait_until 5 panel_hidden || true
xdotool mousemove 1000 600

pkill_zonara
check "Zonara stops" wait_until 10 zonara_gone
check "without Zonara the panel shows the globe" wait_until 10 text_is_globe
import -window root "$out/plasma-globe.png"

read -r x y < <(applet_centre)
xdotool mousemove "$x" "$y" click 1
check "a click on the globe starts Zonara through the bus" wait_until 20 zonara_on_bus
check "and opens its panel" wait_until 10 panel_shown
check "and the line is back" wait_until 10 text_is_line
sleep 1
import -window root "$out/plasma-started.png"

echo "Screenshots in $out"
exit $failed
