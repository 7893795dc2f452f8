# Sourced by scripts/demo/play: launcher.exe under Wine, played with a real pointer and keys.
# shellcheck shell=bash disable=SC2154

launcher_program=$PWD/build/windows/bin/launcher.exe
layout=$PWD/src/ui/win32/layout_main.cpp
main_window=
pictures=0
on_failure=picture_of_failure

visible() { xdotool search --onlyvisible --name "$1" 2>/dev/null || true; }
first_visible() { visible "$1" | head -n 1; }

face_start() { # face_start NAME
  main_window=
  wine "$game/launcher.exe" >"$demo/launcher-$1.txt" 2>&1 </dev/null &
  launcher=$!
}

# The next start searches the ring from its first entry.
face_forget_mirror() {
  local section
  for section in LASTURL URLWEB; do
    wine reg delete "HKCU\\Software\\VB and VBA Program Settings\\KVN_UPDATER\\$section" /f >"$demo/forget.txt" 2>&1 ||
      fail 'the mirror is not forgotten (forget.txt)'
  done
}

# The windows that bear the program's title: the main one is high, the others are message boxes.
main_or_box() { # main_or_box main|box
  local window height kind
  for window in $(visible '^Launcher - Kelvarin$'); do
    height=$(xdotool getwindowgeometry --shell "$window" 2>/dev/null | sed -n 's/^HEIGHT=//p') || true
    [ -n "$height" ] || continue # closed meanwhile
    if [ "$height" -gt 400 ]; then kind=main; else kind=box; fi
    [ $kind != "$1" ] || { say "$window"; return; }
  done
}
box() { main_or_box box; }
is_box() { [ -n "$(box)" ]; }

# The start is done when news are asked for.
face_ready() {
  main_window=$(main_or_box main)
  [ -n "$main_window" ] && requests 'web/include/noticiasbase\.php' | grep -q php
}

# At the middle of the control, as the layout places it.
face_press() { # face_press CONTROL
  local x y width height
  IFS=', ' read -r x y width height < <(sed -n "s/^ *{\"$1\", \([0-9, ]*\)},.*/\1/p" "$layout")
  [ -n "$height" ] || fail "$1 has no place in $layout"
  xdotool mousemove --window "$main_window" $((x + width / 2)) $((y + height / 2))
  xdotool click 1
}

face_picture() { # face_picture NAME [WINDOW | game]
  local window=${2:-$main_window}
  [ "$window" != game ] || window=$(first_visible '^KVN-DX8$')
  [ "${DEMO_WHOLE_SCREEN-no}" = no ] || window=root
  pictures=$((pictures + 1))
  import -window "$window" "$demo/$(printf %02d $pictures)-$1.png" || fail "no picture of $1"
}

picture_of_failure() { [ -z "$main_window" ] || (face_picture failure) || true; }

question() { first_visible '^¡ATENCIÓN! Lea con cuidado\.$'; }
is_question() { [ -n "$(question)" ]; }

press_key() { # press_key WINDOW KEY
  xdotool windowactivate --sync "$1" key --window 0 "$2" 2>/dev/null || true
}

face_accept_libraries() {
  wait_until 60 'the closing message of the libraries' is_box
  face_picture libraries "$(box)"
  press_key "$(box)" Return
  wait_until 10 'the end of the message' no_box
}
no_box() { ! is_box; }

face_confirm_repair() {
  wait_until 10 'the question before a repair' is_question
  face_picture repair-question "$(question)"
  press_key "$(question)" alt+y
  wait_until 10 'the end of the question' no_question
}
no_question() { ! is_question; }

face_game_started() { [ -n "$(first_visible '^KVN-DX8$')" ]; }
face_command_line() { tr '\0' ' ' <"/proc/$(xdotool getwindowpid "$(first_visible '^KVN-DX8$')")/cmdline"; }
face_end_game() {
  press_key "$(first_visible '^KVN-DX8$')" Escape
  wait_until 10 "the game's end" game_ended
}
game_ended() { ! face_game_started; }

face_trouble() {
  is_box || return 1
  face_picture trouble "$(box)"
  say 'a message box that nobody expected'
}
