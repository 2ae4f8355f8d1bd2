#!/usr/bin/env bash
# The programs' command lines and their installed layout: lotwright's options, lotwright-drive --help
# naming every command the driver takes (and nothing else), and cmake --install putting the programs,
# the shipped store, the help, the desktop entry and the icon where they run from.
#   desktop_cli.sh SOURCE_DIR BUILD_DIR
set -u
src=${1:?usage: desktop_cli.sh SOURCE_DIR BUILD_DIR}
build=${2:?usage: desktop_cli.sh SOURCE_DIR BUILD_DIR}
lotwright=$build/apps/desktop/lotwright
drive=$build/apps/drive/lotwright-drive
work=$(mktemp -d "${TMPDIR:-/tmp}/lw-desktop-cli.XXXXXX")
trap 'rm -rf "$work"' EXIT
failures=0
fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}

[[ "$("$lotwright" --version)" == "lotwright 4.01" ]] || fail "--version"
"$lotwright" --help | grep -q -- "--database FILE" || fail "--help does not name --database"
out=$("$lotwright" --database "$work/none.mdb" 2>&1)
rc=$?
[[ $rc -eq 2 && "$out" == *"there is no store"* ]] || fail "--database of a missing file: $rc $out"
out=$("$lotwright" --frobnicate 2>&1)
rc=$?
[[ $rc -eq 2 && "$out" == *"unknown argument --frobnicate"* ]] || fail "an unknown argument: $rc $out"
out=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$lotwright" 2>&1)
rc=$?
[[ $rc -eq 1 && "$out" == *"no display"* ]] || fail "without a display: $rc $out"

# The driver's help lists the commands it takes, one a line, and no other.
listed=$("$drive" --help | awk '/^  [a-z]/ {print $1}' | sort)
taken=$(grep -oE 'cmd == u"[a-z]+"' "$src/apps/drive/driver.cpp" | sed -E 's/.*"(.*)"/\1/' | sort -u)
[[ "$listed" == "$taken" ]] || fail "the help lists $(echo $listed); the driver takes $(echo $taken)"

# Installed, the programs find what ships with them.
cmake --install "$build" --prefix "$work/prefix" > /dev/null || fail "cmake --install"
for f in bin/lotwright bin/lotwright-drive bin/lotwright-convert share/lotwright/lw.mdb \
  share/lotwright/help/index.html share/applications/lotwright.desktop \
  share/icons/hicolor/scalable/apps/lotwright.svg; do
  [[ -e "$work/prefix/$f" ]] || fail "not installed: $f"
done
grep -q '^Exec=lotwright$' "$work/prefix/share/applications/lotwright.desktop" || fail "the desktop entry"
export HOME=$work/home XDG_CONFIG_HOME=$work/home/.config XDG_DATA_HOME=$work/home/.local/share
out=$(printf 'get Userid_lst\nanswer No\nexit\n' | "$work/prefix/bin/lotwright-drive" 2>&1)
[[ "$out" == *'Userid_lst = "No Userid Set"'* ]] || fail "the installed driver: $out"
[[ -f "$XDG_DATA_HOME/lotwright/lw.mdb" ]] || fail "the shipped store was not installed for the user"
[[ $failures -eq 0 ]] && echo "desktop_cli: all checks passed"
exit $((failures > 0 ? 1 : 0))
