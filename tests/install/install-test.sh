#!/usr/bin/env bash
# Checks an installed Zonara: install-test.sh stage|layout|program|completions BUILD_DIR PREFIX
# "stage" installs BUILD_DIR to PREFIX; the others check what it installed.
set -uo pipefail

step=$1 build=$2 prefix=$3
app=io.github.zonara.Zonara
failures=0
fail() {
    echo "FAIL: $*" >&2
    failures=$((failures + 1))
}
# expect NAME EXPECTED ACTUAL
expect() {
    [[ $3 == "$2" ]] || fail "$1: expected [$2], got [$3]"
}

# A user of our own, so that no real preferences or running Zonara take part.
export HOME=$prefix/home-$step XDG_CONFIG_HOME=$prefix/home-$step/.config TZ=UTC
rm -rf "$HOME"
unset ZONARA_CITIES_FILE

case $step in
stage)
    rm -rf "$prefix"
    cmake --install "$build" --prefix "$prefix" >/dev/null || fail "cmake --install"
    ;;

layout)
    for file in bin/zonara libexec/zonara/zonara-tray libexec/zonara/zonara-cli \
        share/zonara/cities.json share/zonara/LICENSE share/zonara/README \
        share/applications/$app.desktop share/metainfo/$app.metainfo.xml \
        share/icons/hicolor/scalable/apps/$app.svg \
        share/icons/hicolor/symbolic/apps/$app-symbolic.svg \
        share/dbus-1/services/$app.service share/man/man1/zonara.1.gz \
        share/bash-completion/completions/zonara share/zsh/vendor-completions/_zonara \
        share/fish/vendor_completions.d/zonara.fish share/doc/zonara/copyright; do
        [[ -s $prefix/$file ]] || fail "$file is not installed"
    done
    [[ -x $prefix/bin/zonara ]] || fail "bin/zonara is not executable"

    desktop=$prefix/share/applications/$app.desktop
    desktop-file-validate "$desktop" || fail "desktop-file-validate"
    appstreamcli validate --no-net "$prefix/share/metainfo/$app.metainfo.xml" >/dev/null ||
        fail "appstreamcli validate: $(appstreamcli validate --no-net \
            "$prefix/share/metainfo/$app.metainfo.xml")"
    version=$("$prefix/bin/zonara" --version)
    grep -q "<release version=\"${version#zonara }\" date=\"[0-9-]\{10\}\"" \
        "$prefix/share/metainfo/$app.metainfo.xml" || fail "the metainfo lacks release $version"

    # The desktop entry, the bus service and the tray name the same program and icon.
    expect "desktop Icon" "$app" "$(sed -n 's/^Icon=//p' "$desktop")"
    expect "desktop Exec" "zonara" "$(sed -n '0,/^Exec=/s/^Exec=//p' "$desktop")"
    grep -qx 'DBusActivatable=true' "$desktop" || fail "the desktop entry is not D-Bus activatable"
    service=$prefix/share/dbus-1/services/$app.service
    expect "service Name" "$app" "$(sed -n 's/^Name=//p' "$service")"
    expect "service Exec" "$prefix/bin/zonara --gapplication-service" \
        "$(sed -n 's/^Exec=//p' "$service")"

    # The man page reads without warnings and covers every command of --help.
    manual=$(MANWIDTH=100 man --warnings -l "$prefix/share/man/man1/zonara.1.gz" 2>&1 >/dev/null)
    [[ -z $manual ]] || fail "man warns: $manual"
    page=$(MANWIDTH=100 man -l "$prefix/share/man/man1/zonara.1.gz" 2>/dev/null)
    for command in $("$prefix/bin/zonara" --help | awk '/^  [a-z]/ { print $1 }' | tr -d ,) \
        unpin TZ XDG_CONFIG_HOME "EXIT STATUS"; do
        grep -q -- "$command" <<<"$page" || fail "the man page lacks $command"
    done
    ;;

program)
    zonara=$prefix/bin/zonara
    # The catalogue is found beside the binary: a city that is no zone's name.
    grep -q 'Göteborg.*Europe/Stockholm' <<<"$("$zonara" search göteborg)" ||
        fail "search göteborg: $("$zonara" search göteborg 2>&1)"
    # Its own bus, so that a Zonara the bus starts is ours alone.
    config=$prefix/bus.conf
    cat >"$config" <<CONF
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=${TMPDIR:-/tmp}</listen>
  <servicedir>$prefix/share/dbus-1/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
CONF
    read -r address bus < <(QT_QPA_PLATFORM=offscreen dbus-daemon --config-file="$config" \
        --fork --print-address=1 --print-pid=1 | paste -s -d ' ')
    export DBUS_SESSION_BUS_ADDRESS=$address
    trap 'kill "$bus" 2>/dev/null; [[ -n ${started:-} ]] && kill "$started" 2>/dev/null' EXIT

    "$zonara" add Asia/Tokyo --nickname TYO --pin >/dev/null || fail "add Asia/Tokyo"
    expect "line" "TYO 10:00" \
        "$("$zonara" line --format labelTime24 --at 2026-01-05T20:00:07-05:00)"

    # A launcher's Activate starts Zonara, which takes the name and answers.
    gdbus call --session --timeout 5 --dest $app --object-path /io/github/zonara/Zonara \
        --method org.freedesktop.Application.Activate '{}' >/dev/null || fail "Activate"
    started=$(gdbus call --session --dest org.freedesktop.DBus --object-path / \
        --method org.freedesktop.DBus.GetConnectionUnixProcessID $app |
        sed -n 's/^(uint32 \([0-9]*\),)$/\1/p')
    [[ -n $started ]] && expect "the bus started" "$zonara --gapplication-service" \
        "$(tr '\0' ' ' <"/proc/$started/cmdline" | sed 's/ $//')"
    # While it runs, an edit goes through it.
    "$zonara" pin 1 >/dev/null || fail "pin through the running Zonara"
    expect "line after pin" "UTC 01:00  TYO 10:00" \
        "$("$zonara" line --format labelTime24 --at 2026-01-05T20:00:07-05:00)"
    ;;

completions)
    export PATH=$prefix/bin:$PATH
    zonara add America/New_York --nickname "New York City" >/dev/null
    share=$prefix/share
    bash_completion=/usr/share/bash-completion/bash_completion
    # bash: the words offered for a command line, as the shell would ask.
    complete_bash() {
        bash -c 'source "$1"; source "$2"
            read -ra COMP_WORDS <<<"$3"; [[ $3 == *" " ]] && COMP_WORDS+=("")
            COMP_CWORD=$((${#COMP_WORDS[@]} - 1)) COMP_LINE=$3 COMP_POINT=${#3}
            _zonara zonara "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
            printf "%s|" "${COMPREPLY[@]}"' _ "$bash_completion" \
            "$share/bash-completion/completions/zonara" "$1"
    }
    complete_fish() {
        fish --no-config -c "source $share/fish/vendor_completions.d/zonara.fish
            complete -C '$1'" | cut -f1 | paste -s -d '|'
    }
    for shell in bash fish; do
        expect "$shell: commands" "line|list" "$(complete_$shell 'zonara l' | sed 's/|$//')"
        expect "$shell: formats" "labelTime24|labelTime24Seconds" \
            "$(complete_$shell 'zonara watch --format labelTime24' | sed 's/|$//')"
        expect "$shell: zone by prefix" "Europe/Stockholm" \
            "$(complete_$shell 'zonara add Europe/Stockh' | sed 's/|$//')"
    done
    # fish keeps only words that match what was typed; bash may replace it.
    expect "bash: zone by city" "Europe/Stockholm" "$(complete_bash 'zonara add göteborg' | sed 's/|$//')"
    expect "bash: saved city" 'New\ York\ City' "$(complete_bash 'zonara pin N' | sed 's/|$//')"
    expect "fish: saved city" "New York City" "$(complete_fish 'zonara pin N')"
    expect "bash: options" "--before|--to-end" "$(complete_bash 'zonara move 1 --' | sed 's/|$//')"
    zsh -n "$share/zsh/vendor-completions/_zonara" || fail "zsh cannot read its completion"
    ;;
esac

exit $((failures > 0))
