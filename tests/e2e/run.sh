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
# A line "# service: NAME ARGS" (as many as needed) starts tests/e2e/NAME_server.py under
# /usr/bin/python3 with "--port-file FILE --dir DIR ARGS", where DIR ($LW_E2E_WORK/NAME) is the
# server's own folder for what it records; the server writes its port to FILE once it listens. The port
# is in LW_E2E_<NAME>_PORT (NAME upper-cased) and replaces "@<NAME>_PORT@" in the scripts.
#   NAME.after.sh  optional: runs after the last run, with the same variables; what it prints is added
#                  to the transcript after a line "--- after ---" (to show what a server recorded)
# A line "# scanner: test" gives the runs SANE's test scanners; without it they see no scanner at all.
# A folder "$HOME/bin" made by the setup script comes first on PATH for the runs: stand-ins for the
# desktop's own programs (xdg-email, xdg-open) go there.
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
service_pids=()
cleanup() {
  if [[ -n "$server_pid" ]]; then
    kill "$server_pid" 2>/dev/null
    wait "$server_pid" 2>/dev/null
  fi
  for pid in "${service_pids[@]}"; do
    kill "$pid" 2>/dev/null
    wait "$pid" 2>/dev/null
  done
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
# Scanners: the machine's own never take part in a test. A script with the line "# scanner: test" sees
# SANE's test devices ("test:0", "test:1", set up by scanner_test.conf); every other script sees none.
mkdir -p "$work/sane"
: > "$work/sane/dll.conf"
if grep -q -E '^# scanner: test' "$script"; then
  echo test > "$work/sane/dll.conf"
  cp "$dir/scanner_test.conf" "$work/sane/test.conf"
fi
export SANE_CONFIG_DIR="$work/sane"

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

# Waits for a server started in the background to write its port file; false when it never does.
wait_for_port() {
  local file=$1 pid=$2
  for _ in $(seq 100); do
    [[ -s "$file" ]] && return 0
    kill -0 "$pid" 2>/dev/null || return 1
    sleep 0.1
  done
  [[ -s "$file" ]]
}

substitutions=()
[[ -n "$server_pid" ]] && substitutions+=(-e "s/@PORT@/$LW_E2E_PORT/g")
while read -r service_line; do
  [[ -z "$service_line" ]] && continue
  read -r -a service_args <<< "${service_line#\# service:}"
  service=${service_args[0]}
  service_upper=$(echo "$service" | tr '[:lower:]' '[:upper:]')
  mkdir -p "$work/$service"
  /usr/bin/python3 "$dir/${service}_server.py" --port-file "$work/$service.port" --dir "$work/$service" \
    "${service_args[@]:1}" > "$work/$service.log" 2>&1 &
  service_pids+=($!)
  if ! wait_for_port "$work/$service.port" "$!"; then
    echo "run.sh: the $service test server did not start:" >&2
    cat "$work/$service.log" >&2
    exit 1
  fi
  port=$(tr -d '\n' < "$work/$service.port")
  export "LW_E2E_${service_upper}_PORT=$port"
  substitutions+=(-e "s/@${service_upper}_PORT@/$port/g")
done < <(grep -E '^# service:' "$script" || true)

if [[ -f "$dir/$name.setup.sh" ]]; then
  if ! (cd "$HOME" && env LC_ALL="$run_locale" bash "$dir/$name.setup.sh") > "$work/setup.log" 2>&1; then
    echo "run.sh: $name.setup.sh failed:" >&2
    cat "$work/setup.log" >&2
    exit 1
  fi
fi

if [[ -d "$HOME/bin" ]]; then
  export PATH="$HOME/bin:$PATH"
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
  if [[ ${#substitutions[@]} -gt 0 ]]; then
    sed "${substitutions[@]}" "$run" > "$work/run.lwd"
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

if [[ -f "$dir/$name.after.sh" ]]; then
  echo "--- after ---" >> "$transcript"
  if ! (cd "$HOME" && env LC_ALL="$run_locale" bash "$dir/$name.after.sh") >> "$transcript" 2> "$work/after.log"; then
    echo "run.sh: $name.after.sh failed:" >&2
    cat "$work/after.log" >&2
    failed=1
  fi
fi

# LW_E2E_UPDATE=1 takes the printed transcript as the new expected one (read the diff before committing).
if [[ "${LW_E2E_UPDATE:-}" == 1 ]]; then
  cp "$transcript" "$expected"
fi
if ! diff -u "$expected" "$transcript"; then
  echo "run.sh: the transcript of $name differs from $expected (lines with - expected, + printed)" >&2
  failed=1
fi
exit $failed
