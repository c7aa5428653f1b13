#!/usr/bin/env bash
# Installs the Debian packages Zonara needs to build, run and test, when any is missing.
set -euo pipefail

packages=(
    cmake ninja-build g++ pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-svg-dev qt6-qpa-plugins libqt6svg6
    libplist-dev libsodium-dev libbenchmark-dev
    tzdata python3
)
if [ "${1:-}" = "--test" ]; then
    packages+=(xvfb xauth dbus dbus-x11 xdotool imagemagick desktop-file-utils
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
