#!/bin/sh
# Draws the PNG icons from their SVG sources. Needs rsvg-convert (Debian package librsvg2-bin). The PNGs are checked in,
# so this is to be run only after a drawing changed.
set -eu
cd "$(dirname "$0")"
command -v rsvg-convert >/dev/null || { echo "make_icons.sh: rsvg-convert is missing (librsvg2-bin)" >&2; exit 1; }
for drawing in svg/*.svg; do
    name=$(basename "$drawing" .svg)
    # The hill-shade panel draws the sun pixel for pixel around a point; the others are icons that get scaled.
    case $name in
    sun) size=16 ;;
    *) size=64 ;;
    esac
    rsvg-convert --width="$size" --height="$size" "$drawing" --output "png/$name.png"
done
