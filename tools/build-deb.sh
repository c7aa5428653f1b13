#!/usr/bin/env bash
# Builds the Debian package in build/deb: a release build for /usr with no
# update feed, packed by CPack, its dependencies found by dpkg-shlibdeps.
# With --lint, lintian checks the result.
set -euo pipefail
cd "$(dirname "$0")/.."

sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
tools/deps.sh
packages=(dpkg-dev file)
[ "${1:-}" = "--lint" ] && packages+=(lintian)
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
        DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "$package"
done

build=build/deb
# Debian's hardening and optimisation flags; CMake reads no CPPFLAGS.
eval "$(DEB_BUILD_MAINT_OPTIONS=hardening=+bindnow dpkg-buildflags --export=sh)"
# No -g: the package is stripped anyway.
export CXXFLAGS="$CPPFLAGS ${CXXFLAGS//-g /}"
cmake -S . -B "$build" -G Ninja \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
    -DZONARA_BUILD_TESTS=OFF -DZONARA_BUILD_BENCHMARKS=OFF -DZONARA_BUILD_SIGN_RELEASE=OFF \
    -DZONARA_UPDATE_FEED_URL= -DZONARA_UPDATE_PUBLIC_KEY= \
    -DZONARA_DEBIAN_FILES=ON -DCMAKE_EXE_LINKER_FLAGS="$LDFLAGS" >/dev/null
cmake --build "$build" -j 2
(cd "$build" && cpack -G DEB)
deb=$(ls "$build"/zonara_*.deb)
echo "Built $deb"
if [ "${1:-}" = "--lint" ]; then
    lintian --info --display-info --pedantic "$deb"
fi
