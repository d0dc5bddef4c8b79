#!/usr/bin/env bash
# Builds and runs all tests.
#
# usage: ./test.sh [--quick]
#
#   --quick   only the release build and its tests
#
# Otherwise also the check of the format, a build with Clang, all tests under the address and undefined-behaviour
# sanitizers, and the tests that use threads under the thread sanitizer. Set JP2K_CONFORMANCE_DIR to a folder with the
# conformance files of ISO/IEC 15444-4 to have them checked too.
set -uo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1
source scripts/packages.sh

quick=false
case "${1:-}" in
"") ;;
--quick) quick=true ;;
*)
    sed -n '2,10s/^# \{0,1\}//p' "${BASH_SOURCE[0]}"
    exit 2
    ;;
esac

reports=$(mktemp -d)
trap 'rm -rf "$reports"' EXIT
failed_stages=()
times=()

# stage NAME COMMAND...: runs it, keeps its time, and notes when it fails; the others go on.
stage()
{
    local name=$1 start=$SECONDS
    shift
    echo "== $name"
    "$@" || failed_stages+=("$name")
    times+=("$((SECONDS - start)) s  $name")
}

check_format()
{
    git ls-files -z '*.cpp' '*.h' | xargs -0 -r clang-format --dry-run -Werror
}

# build PRESET [TARGET]
build()
{
    cmake --preset "$1" >/dev/null && cmake --build --preset "$1" --target "${2:-all}"
}

# run_tests PRESET [CTEST OPTION...]
run_tests()
{
    local preset=$1
    shift
    ctest --preset "$preset" -j "$(nproc)" --output-junit "$reports/$preset.xml" "$@"
}

build_and_test()
{
    build "$1" && run_tests "$1"
}

build_and_test_threads()
{
    build "$1" thread_tests && run_tests "$1" -L threads
}

# Sum of the attribute $1 of all test reports.
total()
{
    cat "$reports"/*.xml 2>/dev/null | sed -n "s/^[[:space:]]*$1=\"\([0-9]*\)\".*/\1/p" | awk '{ n += $1 } END { print n + 0 }'
}

summary()
{
    local tests failures skipped
    tests=$(total tests) failures=$(total failures) skipped=$(total skipped)
    echo
    printf '%s\n' "${times[@]}"
    if [ "${#failed_stages[@]}" -gt 0 ]; then
        printf 'FAILED: %s\n' "${failed_stages[@]}"
    fi
    echo "$((tests - failures - skipped)) passed, $failures failed, $skipped skipped"
}

if $quick; then
    install_packages "${build_packages[@]}" || exit 1
    stage "release: build and test" build_and_test release
else
    install_packages "${build_packages[@]}" "${test_packages[@]}" || exit 1
    stage "format" check_format
    stage "release: build and test" build_and_test release
    stage "clang: build" build clang
    stage "address and undefined-behaviour sanitizers: build and test" build_and_test asan
    stage "thread sanitizer: build and test" build_and_test_threads tsan
fi
summary
[ "${#failed_stages[@]}" -eq 0 ]
