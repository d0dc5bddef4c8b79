#!/usr/bin/env bash
# Builds the viewer and starts it.
#
# usage: ./run.sh [FILE|ADDRESS]
#
# Without an argument it shows a small geo-referenced sample that is made on the spot. Where there is no display it
# writes a picture of the window to viewer.png in the current folder instead.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source "$root/scripts/packages.sh"

has_display()
{
    [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]
}

build()
{
    local needed=("${build_packages[@]}")
    if [ -n "${WAYLAND_DISPLAY:-}" ]; then
        needed+=(qtwayland5)
    fi
    install_packages "${needed[@]}"
    # Only what is needed to look at a picture; the tests are left to test.sh.
    (cd "$root" && cmake --preset release >/dev/null &&
        cmake --build --preset release --target qdviewer XRVJP2kLayer makesample)
}

sample()
{
    local file="$root/build/sample.jp2"
    if [ ! -s "$file" ]; then
        "$root/build/bin/makesample" "$file" >&2
    fi
    echo "$file"
}

case "${1:-}" in
-h | --help)
    sed -n '2,7s/^# \{0,1\}//p' "${BASH_SOURCE[0]}"
    exit 0
    ;;
esac

build
source=${1:-$(sample)}
if has_display; then
    exec "$root/build/bin/qdviewer" "$source"
fi
QT_QPA_PLATFORM=offscreen "$root/build/bin/qdviewer" --window viewer.png "$source"
echo "There is no display: the window was drawn to $PWD/viewer.png"
