# Sourced by the listing tests' after-checks: prints what the loopback XML interface recorded.
api="$LW_E2E_WORK/api"
# The calls in order, with their site, detail level and the server's verdict on headers and body.
show_log() {
  echo "calls:"
  cat "$api/log"
}
# A recorded request against a request written by hand, byte for byte with its line ends; the UUID,
# new at every validation, is checked for its form and then left out of the comparison.
compare_request() {
  local recorded=$1 expected=$2
  if grep -qE '<UUID>[0-9A-F]{32}</UUID>' "$recorded"; then echo "UUID: 32 hexadecimal digits"; else echo "UUID: malformed"; fi
  if sed -E 's#<UUID>[0-9A-F]{32}</UUID>#<UUID>@UUID@</UUID>#' "$recorded" |
      cmp -s - <(sed 's/$/\r/' "$expected"); then
    echo "$(basename "$recorded") matches $(basename "$expected")"
  else
    echo "$(basename "$recorded") differs from $(basename "$expected"):"
    sed -E 's#<UUID>[0-9A-F]{32}</UUID>#<UUID>@UUID@</UUID>#' "$recorded" | tr -d '\r' | diff "$expected" - || true
  fi
}
