#!/usr/bin/env bash
# show-sample.sh PROGRAM PICTURE: opens the panel over a wallpaper with a sample briefing and takes its picture.
# Runs inside a desktop of its own whose home folder it may fill.
set -euo pipefail
program=$1 picture=$2
source "$(dirname "$(readlink -f "$0")")/sample-desktop.sh"

sample_day
evening_sky
compositor
open_panel "$program" 2
import -window root "$picture"
