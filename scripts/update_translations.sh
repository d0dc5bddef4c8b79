#!/usr/bin/env bash
# Brings the translation files up to date with the texts in the sources.
#
# usage: scripts/update_translations.sh [FOLDER]
#
# New texts come in as unfinished, texts that are gone go. FOLDER holds the .ts files (default: resources/translations).
# The tool is lupdate of Qt 5; the variable LUPDATE may name another than that on the path.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
folder=$(cd "${1:-$root/resources/translations}" && pwd)
cd "$root"

# update NAME FOLDER...: the files NAME_<language>.ts from the sources in the folders.
update()
{
    local name=$1 language
    shift
    for language in de fr es ja; do
        # No line numbers, so that the files change with the texts only; no guesses from similar texts.
        "${LUPDATE:-lupdate}" -silent -locations none -no-obsolete -disable-heuristic similartext \
            -disable-heuristic sametext -disable-heuristic number -source-language en_US -target-language "$language" \
            "$@" -ts "$folder/${name}_$language.ts"
    done
}

update xrvjp2klayer layer pages panels plugin
