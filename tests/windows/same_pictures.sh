#!/usr/bin/env bash
# Renders every sample with the Windows build and with the Linux build, which scripts/test has built
# before, and compares: the same size, and no pixel further apart than one 8-bit step. How many
# pixels differ at all is written to FOLDER/report.
#
#   same_pictures.sh EMULATOR WINDOWS_TARVO LINUX_TARVO EXAMPLES FOLDER
set -euo pipefail
emulator=$1 windows=$2 linux=$3 examples=$4 folder=$5
[ -x "$linux" ] || { echo "there is no $linux: build the preset linux first" >&2; exit 1; }
mkdir -p "$folder"
: >"$folder/report"
for scene in "$examples"/*/*.json; do
  case $scene in */broken/*) continue ;; esac
  for mode in fast exact; do
    name=$folder/$(basename "$scene" .json)-$mode
    "$linux" render "$scene" "--$mode" --quiet -o "$name-linux.png"
    "$emulator" "$windows" render "$scene" "--$mode" --quiet -o "$name-windows.png"
    difference=$("$linux" diff "$name-linux.png" "$name-windows.png" | tail -n 1) || true
    echo "$(basename "$name"): $difference" >>"$folder/report"
    "$linux" diff "$name-linux.png" "$name-windows.png" --tolerance 1
  done
done
