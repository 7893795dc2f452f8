# Sourced by ./demo: a game to publish, and its publication.
# shellcheck shell=bash disable=SC2154

categories=(Init Mapas Graficos Midis Wavs AU Extras)
patches_each=5
package=$demo/package # files/ and md5sums

# apt-get with lists of its own, for a machine whose lists are missing.
fetch_with_own_lists() {
  local own=(-o "Dir::State::lists=$package/lists" -o "Dir::Cache=$package/cache" -o APT::Sandbox::User=)
  mkdir -p "$package/lists/partial" "$package/cache/archives/partial"
  apt-get -qq "${own[@]}" update && apt-get -qq "${own[@]}" download flare-game
}

fetch_package() {
  mkdir -p "$package"
  (
    cd "$package" || exit
    apt-get -qq -o APT::Sandbox::User= download flare-game || fetch_with_own_lists
  ) >"$demo/package.log" 2>&1 </dev/null || return 1
  dpkg-deb -x "$package"/flare-game_*.deb "$package/files" &&
    dpkg-deb -e "$package"/flare-game_*.deb "$package/control" || return 1
  mv "$package/control/md5sums" "$package/md5sums"
}

generate_game() {
  local folder=$package/files/datos i
  mkdir -p "$folder"/{mapas,sonidos,textos}
  for i in $(seq 100); do
    seq $((i * 1000)) $((i * 1000 + 20 * i)) >"$folder/mapas/Mapa $i.dat"
    seq -f 'onda %g' "$i" $((i * 5)) >"$folder/sonidos/canción $i.wav"
    seq -s ' ' $((i * 7)) >"$folder/textos/diálogo $i.txt"
  done
  (cd "$package/files" && find . -type f -printf '%P\0' | sort -z | xargs -0 md5sum) >"$package/md5sums"
}

get_game() { # get_game GENERATED
  mkdir -p "$lists"
  if [ "$1" = no ] && fetch_package; then
    say "The package flare-game: $(wc -l <"$package/md5sums") files with its own list of digests."
    echo "the package's own list (md5sum -c)" >"$lists/whose"
  else
    [ "$1" = yes ] || say 'The package flare-game cannot be had (build/demo/package.log); using a small generated game.'
    rm -rf "$package"
    generate_game
    say "A generated game: $(wc -l <"$package/md5sums") files with a list by md5sum."
    echo 'the list that md5sum made of the generated game' >"$lists/whose"
  fi
}

# Links the files of a list into a folder, below a further folder.
lay_out() { # lay_out LIST FOLDER
  mkdir -p "$2"
  (cd "$package/files" && cut -c 35- "$lists/$1" | tr '\n' '\0' | xargs -0 cp -al --parents -t "$2")
}

# Cuts a list into consecutive parts of nearly the same length: LIST.1, LIST.2, ...
cut_list() { # cut_list LIST PARTS
  local lines
  lines=$(wc -l <"$lists/$1")
  awk -v out="$lists/$1." -v parts="$2" -v lines="$lines" \
    '{ print > (out (int((NR - 1) * parts / lines) + 1)) }' "$lists/$1"
}

publish_patch() { # publish_patch CATEGORY FOLDER
  "$publisher" patch "$publication" "$1" "$2" >>"$demo/publisher.log" 2>&1 || fail "$2 is not published"
}

# Everything as numbered patches, in the list's order; every 30th file below Bin too, beside the client; every 12th
# kept below NOVEDADES for five later patches.
publish_game() { # publish_game FACE
  local number=0 category i
  cp "$package/md5sums" "$lists/game"
  awk 'NR % 30 == 0' "$lists/game" >"$lists/bin"
  awk 'NR % 12 == 0' "$lists/game" >"$lists/news"
  cut_list game $((${#categories[@]} * patches_each))
  cut_list news 5
  "$publisher" init "$publication" >"$demo/publisher.log" 2>&1 || fail 'no publication'
  for category in "${categories[@]}"; do
    for i in $(seq $patches_each); do
      lay_out game.$((++number)) "$demo/patches/$number"
      publish_patch "$category" "$demo/patches/$number"
    done
  done
  for i in 1 2 3 4 5; do lay_out "news.$i" "$demo/patches/news-$i/NOVEDADES"; done
  lay_out bin "$demo/game/Bin"
  case $1 in
    windows) cp build/windows/bin/KVN-DX8.exe "$demo/game/Bin/" ;;
    native) cp scripts/demo/native-client "$demo/game/Bin/KVN-DX8.exe" ;;
  esac
  "$publisher" index "$publication" "$demo/game" >>"$demo/publisher.log" 2>&1 || fail 'Bin is not published'
  write_answers
  "$publisher" check "$publication" >>"$demo/publisher.log" 2>&1 || fail 'the publication is not whole'
  say "$number patches of ${#categories[@]} categories, $(($(wc -l <"$lists/bin") + 1)) files of Bin."
}

write_answers() {
  local web=$publication/web/include
  printf '%s' '1@Kelvarin Norte@ONLINE@1@0@187@@0|2@Kelvarin Sur@ONLINE@1@0@64@Evento doble@0|3@Pruebas@OFFLINE@0@0@0@Mantenimiento@0' >"$web/info.php"
  printf '%s' '12|0|¡Torneo de parejas este sábado! Inscripción abierta en la plaza.|14-11-2026@' >"$web/noticiasbase.php"
}
