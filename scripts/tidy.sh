#!/usr/bin/env bash
# Has clang-tidy look at the product's sources, with the checks of .clang-tidy.
#
# usage: scripts/tidy.sh [FILE.cpp ...]
#
# Without files: all sources of the product, and the headers that they include. Nothing has to be built for it. Tests are
# left to the compilers.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh
build=$PWD/build-tidy

# The commands of a build without precompiled headers, and the headers made from forms.
configure()
{
    local info
    mkdir -p "$build"
    cmake --preset clang -B "$build" -DXRV_PRECOMPILE=OFF -DBUILD_TESTING=OFF >"$build/log" || {
        cat "$build/log"
        return 1
    }
    find "$build" -name AutogenInfo.json | while read -r info; do
        cmake -E cmake_autogen "$info" Debug >/dev/null
    done
}

# Most of the time goes into the headers of Qt. So the sources that a target has in a folder are looked at as one, in a
# source that includes them: a tenth of the time.
join_sources()
{
    rm -rf "$build/joined"
    mkdir "$build/joined"
    awk -v root="$PWD/" -v joined="$build/joined" '
        /"command":/ { command = $0 }
        /"file":/ {
            file = $2; gsub(/[",]/, "", file)
            if (index(file, root "build-tidy/") || !match(command, / -o [^ ]*/)) next
            group = substr(command, RSTART + 4, RLENGTH - 4); sub(/\/[^\/]*$/, "", group)
            unit = group; gsub(/CMakeFiles\/|\.dir/, "", unit); gsub(/\//, "-", unit); unit = joined "/" unit ".cpp"
            if (!(unit in seen)) {
                seen[unit]
                source = command; sub(/ -o .*/, " -c " unit "\",", source)
                entries = entries (entries ? ",\n" : "") "{ \"directory\": \"" root "build-tidy\",\n" source \
                    "\n\"file\": \"" unit "\" }"
            }
            print "#include \"" file "\" // NOLINT(bugprone-suspicious-include)" > unit
        }
        END { print "[" entries "]" > (joined "/compile_commands.json") }' "$build/compile_commands.json"
}

# look SOURCE: says nothing where all is well.
look()
{
    clang-tidy -p "$database" --quiet "--header-filter=^$PWD/[a-z]*/" "$1" 2> >(grep -v ' generated\.$' >&2)
}

# Sources that have the same names in their unnamed namespaces cannot be joined: one by one then.
look_at_joined()
{
    local said source status=0
    if said=$(database=$build/joined look "$1" 2>&1); then
        return
    elif grep -q clang-diagnostic-error <<<"$said"; then
        for source in $(cut -d'"' -f2 "$1"); do
            look "$source" || status=1
        done
        return $status
    else
        echo "$said"
        return 1
    fi
}

# in_parallel FUNCTION: for each of the names that come in.
in_parallel()
{
    tr '\n' '\0' | xargs -0 -n 1 -P "$(nproc)" bash -c "$1"' "$1"' bash
}

install_packages "${build_packages[@]}" "${tidy_packages[@]}"
configure
export build database=$build
export -f look look_at_joined
if [ $# -gt 0 ]; then
    printf '%s\n' "$@" | in_parallel look
else
    join_sources
    ls -S "$build"/joined/*.cpp | in_parallel look_at_joined # the largest first, so that the cores finish together
fi
