#!/usr/bin/env bash
# render.sh SIZE PICTURE: draws the program's icon, SIZE pixels wide. Small ones are drawn from a simpler drawing.
set -euo pipefail
size=$1 picture=$2
drawing=$(dirname "$(readlink -f "$0")")/app.dawnly.Dawnly.svg
if ((size <= 32)); then drawing=${drawing%/*}/small-sizes.svg; fi
mkdir -p "$(dirname "$picture")"
rsvg-convert --width "$size" --height "$size" --output "$picture" "$drawing"
