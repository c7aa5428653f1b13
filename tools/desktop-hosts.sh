#!/usr/bin/env bash
# Runs Zonara beside a real desktop host on a headless display and
# photographs what the user sees: the line, the tray item, the opened panel.
# Run by hand (never by the test command); each host is a Debian package that
# this script installs when it is missing.
#
#   tools/desktop-hosts.sh xfce  [OUTDIR]   xfce4-panel: Generic Monitor running
#                                           `zonara line --genmon`, beside the tray
#   tools/desktop-hosts.sh sway  [OUTDIR]   headless sway + waybar: a `zonara watch`
#                                           module and waybar's tray (grim)
#   tools/desktop-hosts.sh tint2 [OUTDIR]   an XEmbed tray (tint2) started after Zonara
#
# The StatusNotifierItem host with labels (vala-panel) is tools/tray-screenshot.sh.
# Zonara runs from ZONARA_BINARY (default build/dev/bin/zonara) with a
# throw-away configuration of three cities, two pinned.
set -euo pipefail

# Waits until a command succeeds, for at most $1 tenths of a second.
wait_for() {
    local tries=$1
    shift
    for _ in $(seq "$tries"); do
        "$@" >/dev/null 2>&1 && return 0
        sleep 0.1
    done
    echo "desktop-hosts: gave up waiting for: $*" >&2
    return 1
}

# The rest runs inside the display and the session bus of its own.
inner() {
    case "$host" in
    xfce)
        # The plugin keeps its settings in an rc file named after its id.
        mkdir -p "$XDG_CONFIG_HOME/xfce4/panel" "$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml"
        cat >"$XDG_CONFIG_HOME/xfce4/panel/genmon-1.rc" <<RC
Command=$binary line --genmon
UseLabel=0
Text=
UpdatePeriod=1000
Font=Sans 10
RC
        cat >"$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml" <<'XML'
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="30"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="genmon"/>
    <property name="plugin-2" type="string" value="systray"/>
  </property>
</channel>
XML
        # No window manager here: the panel need not wait for one.
        xfce4-panel --disable-wm-check >"$work/panel.log" 2>&1 &
        wait_for 100 xdotool search --class xfce4-panel
        sleep 3
        QT_QPA_PLATFORM=xcb "$binary" >"$work/zonara.log" 2>&1 &
        sleep 4
        import -window root -crop 1280x30+0+0 +repage "$out/xfce-genmon.png"
        # The line is the first plugin: a click there opens the panel.
        xdotool mousemove 40 15 click 1
        wait_for 50 xdotool search --onlyvisible --name '^Zonara$'
        sleep 1
        import -window root "$out/xfce-genmon-click.png"
        ;;
    tint2)
        # Zonara first: with no tray anywhere it opens as a window ...
        QT_QPA_PLATFORM=xcb "$binary" >"$work/zonara.log" 2>&1 &
        wait_for 100 xdotool search --onlyvisible --name '^Zonara$'
        sleep 1
        import -window root "$out/tint2-before.png"
        # ... and moves into the tray that starts later.
        tint2 >"$work/panel.log" 2>&1 &
        wait_for 100 xdotool search --class tint2
        sleep 3
        import -window root "$out/tint2-after.png"
        if xdotool search --onlyvisible --name '^Zonara$' >/dev/null; then
            echo "desktop-hosts: the window is still open after the tray came" >&2
        fi
        grep -v '^$' "$work/zonara.log" || true
        ;;
    esac
}

if [ "${1:-}" = --inner ]; then
    inner # called back inside the display and the bus made below
    exit
fi

repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
self=$(realpath "${BASH_SOURCE[0]}")
host=${1:?"usage: $0 xfce|sway|tint2 [OUTDIR]"}
out=$(realpath -m "${2:-$repo/build/desktop-hosts}")
binary=$(realpath "${ZONARA_BINARY:-$repo/build/dev/bin/zonara}")
[ -x "$binary" ] || { echo "desktop-hosts: build $binary first" >&2; exit 2; }
mkdir -p "$out"

need() {
    local missing=()
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
            missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo=sudo
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}
need xvfb xauth dbus dbus-x11 xdotool imagemagick fonts-dejavu-core

work=$(mktemp -d)
export host out binary work
trap 'kill $(jobs -p) 2>/dev/null || true; wait 2>/dev/null || true; [ -n "${ZONARA_HOSTS_KEEP:-}" ] || rm -rf "$work"' EXIT
export HOME=$work/home XDG_CONFIG_HOME=$work/home/.config XDG_RUNTIME_DIR=$work/runtime
mkdir -p "$XDG_CONFIG_HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
"$binary" add Europe/Stockholm --pin >/dev/null
"$binary" add Asia/Tokyo --pin >/dev/null
"$binary" add America/New_York >/dev/null

case "$host" in
xfce)
    need xfce4-panel xfce4-genmon-plugin xfconf
    dbus-run-session -- xvfb-run -a -s "-screen 0 1280x600x24" "$self" --inner
    ;;
tint2)
    need tint2
    # No StatusNotifierWatcher on this bus: tint2 is an XEmbed tray only.
    dbus-run-session -- xvfb-run -a -s "-screen 0 1280x600x24" "$self" --inner
    ;;
sway)
    need sway waybar grim qt6-wayland
    mkdir -p "$XDG_CONFIG_HOME/sway" "$XDG_CONFIG_HOME/waybar"
    cat >"$XDG_CONFIG_HOME/sway/config" <<SWAY
output HEADLESS-1 resolution 1280x600
bar swaybar_command waybar
SWAY
    cat >"$XDG_CONFIG_HOME/waybar/config" <<JSON
{
    "layer": "top",
    "position": "top",
    "height": 30,
    "modules-left": ["custom/zonara"],
    "modules-right": ["tray"],
    "custom/zonara": {
        "exec": "$binary watch --json",
        "return-type": "json",
        "on-click": "$binary --panel"
    },
    "tray": { "spacing": 8 }
}
JSON
    mkdir -p "$work/shots"
    cat >"$work/inner-sway.sh" <<INNER
set -e
WLR_BACKENDS=headless WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman sway >"$work/sway.log" 2>&1 &
for _ in \$(seq 100); do ls "\$XDG_RUNTIME_DIR"/wayland-* >/dev/null 2>&1 && break; sleep 0.1; done
export WAYLAND_DISPLAY=\$(cd "\$XDG_RUNTIME_DIR" && ls wayland-* | grep -v lock | head -1)
sleep 3
QT_QPA_PLATFORM=wayland "$binary" >"$work/zonara.log" 2>&1 &
sleep 4
grim -g "0,0 1280x30" "$work/shots/sway-waybar.png"
# waybar's click runs zonara --panel, as a pointer click on the module would.
"$binary" --panel
sleep 2
grim "$work/shots/sway-panel.png"
INNER
    if [ "$(id -u)" -eq 0 ]; then
        # sway refuses to run as root: the whole session runs as nobody.
        chown -R 65534:65534 "$work"
        setpriv --reuid=65534 --regid=65534 --clear-groups -- \
            env HOME="$HOME" XDG_CONFIG_HOME="$XDG_CONFIG_HOME" XDG_RUNTIME_DIR="$XDG_RUNTIME_DIR" \
            dbus-run-session -- bash "$work/inner-sway.sh"
    else
        dbus-run-session -- bash "$work/inner-sway.sh"
    fi
    cp "$work"/shots/*.png "$out"/
    ;;
*)
    echo "desktop-hosts: no host \"$host\"" >&2
    exit 2
    ;;
esac
echo "screenshots in $out:"
ls "$out"
