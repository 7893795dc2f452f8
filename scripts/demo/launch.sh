# Sourced by scripts/demo/play: one start of the launcher, what it fetched and refused, and the proof of the game's files.
# shellcheck shell=bash disable=SC2154

launcher=
mark=0   # lines of the honest mirror's log before the present run
memory=0 # most that the launcher has had in the present run, in KB

# What was fetched in the present run, by a pattern of its path. An archive that turns out to be too large to be fetched
# ahead is asked for again in its turn.
requests() { tail -n +$((mark + 1)) "$log" | sed -nE "s#^GET /(files/)?(update/kvn2011/)?($1)(\?[^ ]*)? (200|304)\$#\3#p"; }
patches() { requests 'OldAct/[^ ]*\.zip' | sort -u; }
bin_files() { requests 'NewAct2/Bin/[^ ]*\.kvn'; }
fetched_at_least() { [ "$("$1" | wc -l)" -ge "$2" ]; } # fetched_at_least KIND COUNT

start_launcher() { # start_launcher NAME TITLE
  step "$2"
  name=$1
  mark=$(wc -l <"$log")
  memory=0
  face_start "$name"
  wait_until 60 "the launcher's window" is_ready
}
launcher_ended() { ! kill -0 "$launcher" 2>/dev/null; }
refuse_trouble() {
  local trouble
  if trouble=$(face_trouble); then fail "$name: $trouble"; fi
}
is_ready() {
  refuse_trouble
  ! launcher_ended || fail "$name: the launcher ended at its start"
  face_ready
}

press() { # press CONTROL
  pressed=$EPOCHREALTIME
  face_press "$1"
}

note_memory() {
  local most
  most=$(sed -nE 's/^VmHWM:[^0-9]*([0-9]+).*/\1/p' "/proc/$launcher/status" 2>/dev/null) || return 0
  memory=${most:-$memory}
}
each_round=note_memory

game_runs() {
  face_game_started && return
  refuse_trouble
  launcher_ended || return 1
  # A game that was started may take a moment to show itself.
  : "${ended_at:=$SECONDS}"
  [ $SECONDS -lt $((ended_at + 20)) ] || fail "$name: the launcher ended and no game was started"
  return 1
}

# Waits for the game, ends it, compares what was fetched from the honest mirror, and what was refused from the bad one,
# with what should have been, and proves the files.
finish() { # finish PATCHES BIN-FILES [REFUSED]
  local took count ended_at=''
  wait_until 300 'the game' game_runs
  took=$(awk -v from="$pressed" -v to="$EPOCHREALTIME" 'BEGIN { printf "%.1f", to - from }')
  face_picture "$name-game" game
  [[ $(face_command_line) == *KVN-DX8.exe*" $parameter"* ]] || fail "$name: the game was started by $(face_command_line)"
  face_end_game
  wait_until 30 "the launcher's end" launcher_ended
  launcher=
  count="$(patches | wc -l) patches and $(bin_files | wc -l) files of Bin"
  report "$name: $count fetched, the game runs after $took s, peak memory $((memory / 1024)) MB"
  [ "$(bin_files | wc -l)" -gt 5 ] || report_names
  [ "$count" = "$1 patches and $2 files of Bin" ] || fail "$name: $1 patches and $2 files of Bin should have been fetched"
  check_errors "${3-0}"
  check_files
}

report_names() {
  local url
  bin_files | sed 's|^NewAct2/||' | while read -r url; do report "    $(printf '%b' "${url//%/\\x}")"; done
}
report() { say "$*" | tee -a "$demo/report.txt"; }

# The launcher's log names each piece that it refused, why, and the mirror that gave it; a line of details may go before.
# It is kept for each start.
check_errors() { # check_errors REFUSED
  local noted=$demo/errors-$name.txt pieces
  : >"$noted"
  if [ -e "$game/../Errores.log" ]; then
    iconv -f CP1252 -t UTF-8 "$game/../Errores.log" | tr -d '\r' >"$noted"
    rm "$game/../Errores.log"
  fi
  only_refusals <"$noted" || fail "$name: the launcher noted errors that nobody expected: $(cat "$noted")"
  pieces=$({ grep -F " $bad_mirror" "$noted" || true; } | sed -E 's/^[^ ]+ [^ ]+ ([^:]+):.*/\1/' | sort -u | wc -l)
  [ "$pieces" = "$1" ] || fail "$name: refused pieces: $pieces instead of $1: $(cat "$noted")"
  [ "$1" = 0 ] || report "  refused from the ring's second entry, by Errores.log: $1"
  sed "s/^/    /" "$noted" | tee -a "$demo/report.txt"
}
only_refusals() {
  awk -v mirror=" $bad_mirror" 'index($0, mirror) { details = 0; next } details { wrong = 1 } { details = 1 } END { exit wrong || details }'
}

version= # ending of the names of the lists: none for the package's own, "-2" for those of the second version

check_files() {
  local whole bin news=''
  whole=$(equal_files "game$version" .)
  bin=$(equal_files "bin$version" Bin)
  if [ -e "$game/NOVEDADES" ]; then news=", $(equal_files news NOVEDADES)"; fi
  nothing_else_in_bin
  report "  $whole, $bin$news equal $(cat "$lists/whose")${version:+, with the changes of the second version}"
}

# Proves a list's files in a folder of the game by md5sum, and counts them.
equal_files() { # equal_files LIST FOLDER
  (cd "$game/$2" && md5sum --quiet --strict -c "$lists/$1") >"$demo/md5sum.log" 2>&1 ||
    fail "$name: the files below $2 are not as listed (md5sum.log)"
  printf '%d files in %s' "$(wc -l <"$lists/$1")" "${2/#./the game folder}"
}

# The client and the launcher's record are in no list.
nothing_else_in_bin() {
  (cd "$game/Bin" && find . -type f -printf '%P\n') | grep -vx -e KVN-DX8.exe -e MD5Update.ini | sort |
    diff - <(cut -c 35- "$lists/bin$version" | sort) >"$demo/bin.diff" || fail "$name: Bin holds other files than listed (bin.diff)"
}

# The path of the list's file with that number.
file_of() { sed -n "$2p" "$lists/$1" | cut -c 35-; } # file_of LIST NUMBER
