# Sourced by scripts/demo/play: the ring of mirrors that the launcher knows, and mirrors that spoil what they bring.
# shellcheck shell=bash disable=SC2154

# Nobody listens at most entries. The second one answers its probe and serves a bad copy, the fourth is honest, and so
# would be the fifth.
start_ring() { # start_ring NAME BAD-COPY
  ring=$1
  log=$demo/mirror-$ring-4.log
  start_mirror "$ring-2" 127.0.1.2 "$2"
  start_mirror "$ring-4" 127.0.0.1
  start_mirror "$ring-5" 127.0.0.2
  bad_mirror=$(url_of_second "$ring-2")
}
url_of_second() { say "http://$(address_of "$1")/files/update/kvn2011/"; } # url_of_second NAME

# From now on the second entry cuts what it brings.
switch_to_cutting_mirror() {
  start_server "$ring-2-cutting" scripts/demo/cutting-mirror "$publication" 127.0.1.2
  bad_mirror=$(url_of_second "$ring-2-cutting")
  sed -i "s|^2=.*|2=$bad_mirror|" "$game/Deployment.ini"
}

# The launcher and its pictures in a folder of their own, and the ring in Deployment.ini.
make_fresh_folder() { # make_fresh_folder FOLDER [LINES-OF-DEPLOYMENT.INI]
  local honest dead
  game=$1
  honest=$(address_of "$ring-4")
  dead=${honest#*:}
  mkdir -p "$game/RECURSOS"
  cp "$launcher_program" "$game/"
  cp -r assets/skin "$game/RECURSOS/GRAFICOS"
  cat >"$game/Deployment.ini" <<END
[MIRRORS]
1=https://127.0.1.1:$dead/update/kvn2011/
2=$bad_mirror
3=http://127.0.1.3:$dead/update/kvn2011/
4=http://$honest/update/kvn2011/
5=http://$(address_of "$ring-5")/files/update/kvn2011/
6=https://127.0.1.6:$dead/update/kvn2011/
7=https://127.0.1.7:$dead/update/kvn2011/

[SITE]
Web=http://$honest
Api=http://$honest

[LAUNCH]
Parameter=$parameter
${2-}
END
}

# Spoiling must not reach the publication, so nothing is shared with it.
copy_publication() { # copy_publication FOLDER
  mkdir -p "$1"
  cp -r "$publication/." "$1/"
}
each_file() { find "$1" -type f -name "$2" -print0 | sort -z; } # each_file FOLDER PATTERN

# Ways to spoil a file.
damage() { # an archive: its entries' checksums do not hold any more
  dd if=/dev/zero of="$1" bs=1 count=64 seek=$(($(stat -c %s "$1") / 2 - 32)) conv=notrunc status=none
}
cut_short() { truncate -s $(($(stat -c %s "$1") / 3)) "$1"; }
make_page() { printf '<!DOCTYPE html><html><body><h1>Mantenimiento</h1></body></html>' >"$1"; }
flip_byte_keeping_time() {
  local middle byte
  middle=$(($(stat -c %s "$1") / 2))
  byte=$(od -An -tu1 -j $middle -N 1 "$1")
  touch -r "$1" "$demo/time"
  printf '%b' "\\x$(printf %x $((byte ^ 1)))" | dd of="$1" bs=1 seek=$middle conv=notrunc status=none
  touch -r "$demo/time" "$1"
}

# A copy with good lists and nothing good behind them.
spoil_copy() { # spoil_copy FOLDER HOW-ARCHIVES HOW-PACKED-FILES
  local file
  copy_publication "$1"
  while IFS= read -r -d '' file; do "$2" "$file"; done < <(each_file "$1/OldAct" '*.zip')
  while IFS= read -r -d '' file; do "$3" "$file"; done < <(each_file "$1/NewAct2/Bin" '*.kvn')
}
