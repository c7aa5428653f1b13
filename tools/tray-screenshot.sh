#!/usr/bin/env bash
# Screenshots of the tray item in a headless StatusNotifierItem panel: one with
# a line of pinned times (tray-line.png), its menu opened by a left click
# (tray-menu.png, --app only), one with the globe alone (tray-globe.png).
#
#   tools/tray-screenshot.sh [--app | --demo] [OUTDIR]
#
# --app runs the real zonara with two pinned cities (current times), in a
# throw-away configuration, then unpins them; --demo runs zonara_tray_demo with
# a fixed line, then an empty one. The default is --app when bin/zonara is built.
#
# Environment:
#   ZONARA_SNI_PANEL   panel host script (default ../shared/tools/sni-panel.sh beside the repo)
#   ZONARA_BUILD_DIR   build tree with bin/zonara or bin/zonara_tray_demo (default build/tray-dev)
#   ZONARA_TRAY_LINE   the demo's line (default "STO 14:05  TYO 22:05")
set -euo pipefail

repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
panel=${ZONARA_SNI_PANEL:-$repo/../shared/tools/sni-panel.sh}
build=${ZONARA_BUILD_DIR:-$repo/build/tray-dev}
line=${ZONARA_TRAY_LINE:-"STO 14:05  TYO 22:05"}
app=$build/bin/zonara
demo=$build/bin/zonara_tray_demo

mode=auto
case "${1:-}" in
    --app) mode=app; shift ;;
    --demo) mode=demo; shift ;;
esac
out=${1:-$build/tray-screenshots}
if [ "$mode" = auto ]; then
    if [ -x "$app" ]; then mode=app; else mode=demo; fi
fi

[ -x "$panel" ] || { echo "tray-screenshot: no panel host at $panel" >&2; exit 1; }
if [ "$mode" = demo ] && [ ! -x "$demo" ]; then
    cmake --build "$build" --target zonara_tray_demo
fi
[ "$mode" = app ] && [ ! -x "$app" ] && { echo "tray-screenshot: $app is not built" >&2; exit 1; }
mkdir -p "$out"

work=$(mktemp -d)
pid=""
cleanup() {
    exec 3>&- 2>/dev/null || true
    if [ -n "$pid" ] && kill -0 "$pid" 2>/dev/null; then
        kill "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    fi
    "$panel" stop || true
    rm -rf "$work"
}
trap cleanup EXIT

# Tall enough for the opened menu.
export SNI_PANEL_SCREEN=${SNI_PANEL_SCREEN:-1280x400x24}
eval "$("$panel" start)"

watcher_items() {
    dbus-send --session --print-reply --dest=org.kde.StatusNotifierWatcher /StatusNotifierWatcher \
        org.freedesktop.DBus.Properties.Get string:org.kde.StatusNotifierWatcher \
        string:RegisteredStatusNotifierItems 2>/dev/null || true
}

item_label() {
    dbus-send --session --print-reply --dest="org.kde.StatusNotifierItem-$pid-1" \
        /StatusNotifierItem org.freedesktop.DBus.Properties.Get \
        string:org.kde.StatusNotifierItem string:XAyatanaLabel 2>/dev/null |
        sed -n 's/^ *variant *string "\(.*\)"$/\1/p'
}

# Bounded waits; the final pause lets the panel paint what it has just read.
wait_registered() {
    local i
    for i in $(seq 100); do
        watcher_items | grep -q "StatusNotifierItem-$pid-" && { sleep 1; return 0; }
        kill -0 "$pid" 2>/dev/null || break
        sleep 0.1
    done
    echo "tray-screenshot: the item never registered; it said:" >&2
    cat "$work/log" >&2
    return 1
}

wait_label_empty() {
    local i
    for i in $(seq 100); do
        [ -z "$(item_label)" ] && { sleep 1; return 0; }
        sleep 0.1
    done
    echo "tray-screenshot: the label never emptied (still \"$(item_label)\")" >&2
    return 1
}

if [ "$mode" = app ]; then
    # A configuration of its own: the user's cities are never touched.
    export XDG_CONFIG_HOME=$work/config
    "$app" add Europe/Stockholm --pin >/dev/null
    "$app" add Asia/Tokyo --pin >/dev/null
    QT_QPA_PLATFORM=xcb "$app" >"$work/log" 2>&1 &
    pid=$!
    wait_registered
    echo "line: $(item_label)"
    "$panel" shot "$out/tray-line.png"
    # A left click opens the item's menu in this host: the cities, then the commands.
    "$app" add America/New_York >/dev/null
    xdotool mousemove 12 16 click 1
    sleep 1.5
    import -window root "$out/tray-menu.png"
    xdotool key Escape
    # Edits go to the running instance over the bus.
    "$app" unpin Stockholm >/dev/null
    "$app" unpin Tokyo >/dev/null
else
    # The demo reads replacement lines from a pipe kept open on fd 3.
    mkfifo "$work/lines"
    QT_QPA_PLATFORM=xcb "$demo" "$line" <"$work/lines" >"$work/log" 2>&1 &
    pid=$!
    exec 3>"$work/lines"
    wait_registered
    echo "line: $(item_label)"
    "$panel" shot "$out/tray-line.png"
    echo "" >&3
fi

wait_label_empty
"$panel" shot "$out/tray-globe.png"
echo "screenshots ($mode) in $out"
