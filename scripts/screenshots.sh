#!/usr/bin/env bash
# Renders the screens of the desktop program, without a display, to PNG files under build/screenshots/:
# the first-start wizard on a fresh store, then the main window on each page of SSTab1 and each page of
# the Setup page, on a store with the seller list fixture imported and the browser page showing the
# current auction from a loopback server.
#   Usage: scripts/screenshots.sh
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD

jobs=${LW_JOBS:-2}
cmake -S . -B build -G Ninja > /dev/null
cmake --build build -j"$jobs" --target lotwright-screenshots lotwright-drive lotwright-convert lw_shipped_store

out="$root/build/screenshots"
rm -rf "$out"
mkdir -p "$out"
work=$(mktemp -d "${TMPDIR:-/tmp}/lw-screenshots.XXXXXX")
server_pid=
cleanup() {
  if [[ -n "$server_pid" ]]; then
    kill "$server_pid" 2>/dev/null || true
    wait "$server_pid" 2>/dev/null || true
  fi
  rm -rf "$work"
}
trap cleanup EXIT
export QT_QPA_PLATFORM=offscreen
unset DISPLAY WAYLAND_DISPLAY

home() {
  export HOME="$work/$1"
  export XDG_CONFIG_HOME="$HOME/.config" XDG_DATA_HOME="$HOME/.local/share"
  mkdir -p "$XDG_CONFIG_HOME/lotwright" "$XDG_DATA_HOME/lotwright"
}

# The wizard: a fresh store, as the first start finds it.
home fresh
build/apps/desktop/lotwright-screenshots "$out" --wizard

# The item page of the current auction, served on the loopback as the site would.
mkdir -p "$work/pages"
cp tests/e2e/pages/item_ordinary.html "$work/pages/"
printf '[{"path": "/aw-cgi/eBayISAPI.dll", "query": "ViewItem", "file": "item_ordinary.html"}]\n' \
  > "$work/pages/routes.json"
/usr/bin/python3 tests/e2e/http_server.py --root "$work/pages" --port-file "$work/port" > /dev/null 2>&1 &
server_pid=$!
for _ in $(seq 100); do
  [[ -s "$work/port" ]] && break
  sleep 0.1
done
port=$(cat "$work/port")

# A seller with the seller list fixture imported, through the program's own manual import.
home seller
printf '[Lotwright/Hosts]\nitem=127.0.0.1:%s\n[Lotwright/Screen]\nWidth=19500\nHeight=12600\n' "$port" \
  > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp build/share/lw.mdb "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'lotseller', Password = 'secret', Name = 'Lot Seller'; DELETE FROM seller"
cp tests/e2e/pages/seller_list.html "$HOME/my selling.htm"
printf 'file "%s"\nmenu manual_seller_import_mnu\nstatus 1\nanswer No\nexit\n' "$HOME/my selling.htm" |
  build/apps/drive/lotwright-drive
build/apps/desktop/lotwright-screenshots "$out"
echo "screenshots in $out"
