# Sourced by the demonstration's scripts and the measurements, which run in the project's folder: places, words, failing,
# waiting, building, mirrors.
# shellcheck shell=bash disable=SC2034

demo=${DEMO_FOLDER:-$PWD/build/demo}
publisher=$PWD/build/native/bin/publisher
publication=$demo/publication
lists=$demo/lists # of digests: the package's own, and the parts of it that are found elsewhere in the game too

say() { printf '%s\n' "$*"; }
step() { printf '\n== %s (%d s)\n' "$1" "$SECONDS"; }
on_failure=: # a command that is run once before the end
fail() {
  local last=$on_failure
  on_failure=:
  $last
  printf 'demo: %s\ndemo: the logs are in %s\n' "$*" "$demo" >&2
  exit 1
}

each_round=: # a command that every round of waiting runs too

wait_until() { # wait_until SECONDS WHAT COMMAND...
  local end=$((SECONDS + $1)) what=$2
  shift 2
  until "$@"; do
    $each_round
    [ $SECONDS -lt "$end" ] || fail "waited in vain for $what"
    sleep 0.05
  done
}

build() { # build PRESET TARGET...
  local preset=$1 log=$demo/build-$1.log
  shift
  { cmake --preset "$preset" && ninja -C "build/$preset" "$@"; } >"$log" 2>&1 ||
    { grep -E 'error|FAILED' -A5 "$log" >&2 || tail -n 50 "$log" >&2; fail "the preset $preset does not build"; }
}

servers=()
start_mirror() { # start_mirror NAME ADDRESS [FOLDER]
  start_server "$1" "$publisher" serve "${3-$publication}" --host "$2" --port 0 --log
}
start_server() { # start_server NAME COMMAND...
  local log=$demo/mirror-$1.log
  shift
  : >"$log"
  "$@" >"$log" 2>&1 &
  servers+=($!)
  wait_until 10 "a mirror ($*)" grep -q '^Serving ' "$log"
}
address_of() { sed -n 's|^Serving .* on http://\(.*\)/$|\1|p' "$demo/mirror-$1.log"; }
stop_mirrors() {
  [ ${#servers[@]} -eq 0 ] || kill "${servers[@]}" 2>/dev/null || true
  servers=()
}
