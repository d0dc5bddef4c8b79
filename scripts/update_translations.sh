#!/usr/bin/env bash
# Brings the translation files up to date with the texts in the sources.
#
# usage: scripts/update_translations.sh [FOLDER]
#
# New texts come in as unfinished, texts that are gone go. FOLDER is the root of the tree that holds the .ts files
# (default: this one).
# The tool is lupdate of Qt 5; the variable LUPDATE may name another than that on the path.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
target=$(cd "${1:-$root}" && pwd)
cd "$root"

# update ROOM NAME FOLDER...: the files ROOM/translations/NAME_<language>.ts from the sources in the folders.
update()
{
    local place=$target/$1/translations name=$2 language
    shift 2
    for language in de fr es ja; do
        # No line numbers, so that the files change with the texts only; no guesses from similar texts.
        "${LUPDATE:-lupdate}" -silent -locations none -no-obsolete -disable-heuristic similartext \
            -disable-heuristic sametext -disable-heuristic number -source-language en_US -target-language "$language" \
            "$@" -ts "$place/${name}_$language.ts"
    done
}

update resources xrvjp2klayer logging layer pages panels plugin
update host qdgui host
update viewer qdviewer viewer
