#!/usr/bin/env bash
# Sets up, builds and runs Lotwright. Until the desktop front end exists the program runs headless:
# lotwright-drive plays examples/tour.lwd (or the script given) on your own store, which the first start
# installs in ~/.local/share/lotwright, and prints what a user would see.
#   Usage: scripts/run.sh [SCRIPT]
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh

jobs=${LW_JOBS:-2}
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
cmake --build build -j"$jobs" --target lotwright-drive lotwright-convert

exec build/apps/drive/lotwright-drive "${1:-examples/tour.lwd}"
