#!/usr/bin/env bash
# Installs the Debian packages Zonara needs to build, run and test, when any is missing.
set -euo pipefail

packages=(
    cmake ninja-build g++ pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-svg-dev qt6-qpa-plugins libqt6svg6
    libplist-dev libsodium-dev libbenchmark-dev libxcb1-dev libdbus-1-dev
    tzdata python3
)
if [ "${1:-}" = "--test" ]; then
    # clang and its libFuzzer runtime build the fuzz targets; at-spi2-core and
    # python3-pyatspi let a test read the program as a screen reader does; the
    # rest validate and exercise a staged install.
    packages+=(xvfb xauth dbus dbus-x11 xdotool imagemagick desktop-file-utils
               at-spi2-core python3-pyatspi clang libclang-rt-14-dev
               appstream man-db libglib2.0-bin bash-completion zsh fish)
fi

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$package")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
