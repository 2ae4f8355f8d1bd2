#!/usr/bin/env bash
# Sets up, builds and starts Lotwright: the desktop program, on your own store (the first start installs
# an empty one in ~/.local/share/lotwright). Without a display it says so in one line and plays the
# headless tour through lotwright-drive instead; with a SCRIPT it plays that script headless.
#   Usage: scripts/run.sh [SCRIPT]
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh

jobs=${LW_JOBS:-2}
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
if [[ $# -eq 0 && ( -n "${DISPLAY:-}" || -n "${WAYLAND_DISPLAY:-}" ) ]]; then
  cmake --build build -j"$jobs" --target lotwright lotwright-convert
  exec build/apps/desktop/lotwright
fi
[[ $# -eq 0 ]] && echo "run.sh: no display to show the window on (DISPLAY is not set); playing the headless tour instead"
cmake --build build -j"$jobs" --target lotwright-drive lotwright-convert
exec build/apps/drive/lotwright-drive "${1:-examples/tour.lwd}"
