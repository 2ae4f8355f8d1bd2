#!/usr/bin/env bash
# Runs one end-to-end driver script and compares what the driver prints with the expected transcript.
#
#   run.sh DRIVER tests/e2e/NAME.lwd
#
# Every run gets a fresh HOME with its own XDG_CONFIG_HOME and XDG_DATA_HOME, so settings and the store
# start empty. The locale is en_US.UTF-8 unless the script's first line reads "# locale: xx_YY".
# Beside the script:
#   NAME.expected  the transcript (standard output of every run, in order)
#   NAME.setup.sh  optional: prepares files before the first run (runs in the fresh HOME, with the
#                  variables below set)
#   NAME.2.lwd, NAME.3.lwd ...  optional: further runs in the same HOME, as the program started again;
#                  the transcript then has a line "--- NAME.2.lwd ---" before each
# A line "# status: N" in a script gives the exit status its run must end with (default 0).
# A line "# server: ARGS" in the first script starts http_server.py (pages from tests/e2e/pages, ARGS
# added) before the setup and stops it at the end; its port is in LW_E2E_PORT, and "@PORT@" in a
# script is replaced by it.
# With LW_E2E_UPDATE=1 in the environment the transcript replaces NAME.expected.
set -u

driver=${1:?usage: run.sh DRIVER SCRIPT}
script=${2:?usage: run.sh DRIVER SCRIPT}
dir=$(cd "$(dirname "$script")" && pwd)
name=$(basename "$script" .lwd)
expected="$dir/$name.expected"

if [[ ! -x "$driver" ]]; then
  echo "run.sh: driver $driver is not an executable" >&2
  exit 1
fi
if [[ ! -f "$expected" ]]; then
  echo "run.sh: no expected transcript $expected" >&2
  exit 1
fi

work=$(mktemp -d "${TMPDIR:-/tmp}/lw-e2e-$name.XXXXXX")
server_pid=
cleanup() {
  if [[ -n "$server_pid" ]]; then
    kill "$server_pid" 2>/dev/null
    wait "$server_pid" 2>/dev/null
  fi
  rm -rf "$work"
}
trap cleanup EXIT
export HOME="$work/home"
export XDG_CONFIG_HOME="$HOME/.config"
export XDG_DATA_HOME="$HOME/.local/share"
mkdir -p "$XDG_CONFIG_HOME" "$XDG_DATA_HOME"
unset LANG LANGUAGE LC_ALL LC_CTYPE LC_MESSAGES LC_NUMERIC LC_TIME LC_MONETARY
locale_line=$(head -n 1 "$script")
if [[ "$locale_line" =~ ^#\ locale:\ *([A-Za-z_@=]+) ]]; then
  run_locale="${BASH_REMATCH[1]}.UTF-8"
else
  run_locale=en_US.UTF-8
fi
# Handed to the programs only: the machine need not have the locale installed for this shell, since the
# program reads its regional values through ICU.
export LW_E2E_DIR="$dir"
export LW_E2E_WORK="$work"

server_line=$(grep -m1 -E '^# server:' "$script" || true)
if [[ -n "$server_line" ]]; then
  read -r -a server_args <<< "${server_line#\# server:}"
  /usr/bin/python3 "$dir/http_server.py" --root "$dir/pages" --port-file "$work/port" "${server_args[@]}" \
    > "$work/server.log" 2>&1 &
  server_pid=$!
  for _ in $(seq 100); do
    [[ -s "$work/port" ]] && break
    sleep 0.1
  done
  if [[ ! -s "$work/port" ]]; then
    echo "run.sh: the test server did not start:" >&2
    cat "$work/server.log" >&2
    exit 1
  fi
  export LW_E2E_PORT=$(tr -d '\n' < "$work/port")
fi

if [[ -f "$dir/$name.setup.sh" ]]; then
  if ! (cd "$HOME" && env LC_ALL="$run_locale" bash "$dir/$name.setup.sh") > "$work/setup.log" 2>&1; then
    echo "run.sh: $name.setup.sh failed:" >&2
    cat "$work/setup.log" >&2
    exit 1
  fi
fi

transcript="$work/transcript"
: > "$transcript"
failed=0
runs=("$script")
for n in 2 3 4 5 6 7 8 9; do
  [[ -f "$dir/$name.$n.lwd" ]] && runs+=("$dir/$name.$n.lwd")
done
for run in "${runs[@]}"; do
  if [[ "$run" != "$script" ]]; then
    echo "--- $(basename "$run") ---" >> "$transcript"
  fi
  want=0
  status_line=$(grep -m1 -E '^# status: *[0-9]+' "$run" || true)
  [[ -n "$status_line" ]] && want=${status_line##*: }
  if [[ -n "$server_pid" ]]; then
    sed "s/@PORT@/$LW_E2E_PORT/g" "$run" > "$work/run.lwd"
    run_file="$work/run.lwd"
  else
    run_file="$run"
  fi
  (cd "$HOME" && env LC_ALL="$run_locale" timeout 240 "$driver" "$run_file") >> "$transcript" 2> "$work/stderr"
  got=$?
  if [[ "$got" != "$want" ]]; then
    echo "run.sh: $(basename "$run") ended with status $got, expected $want" >&2
    cat "$work/stderr" >&2
    failed=1
  fi
done

# LW_E2E_UPDATE=1 takes the printed transcript as the new expected one (read the diff before committing).
if [[ "${LW_E2E_UPDATE:-}" == 1 ]]; then
  cp "$transcript" "$expected"
fi
if ! diff -u "$expected" "$transcript"; then
  echo "run.sh: the transcript of $name differs from $expected (lines with - expected, + printed)" >&2
  failed=1
fi
exit $failed
