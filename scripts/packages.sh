# Debian packages that the other scripts need; sourced, not run.
# install_packages looks first, so that a second run is quick and needs no network.

build_packages=(
    git g++ cmake ninja-build ccache mold pkg-config python3
    qtbase5-dev qttools5-dev qttools5-dev-tools qttranslations5-l10n
    libopenjp2-7-dev libproj-dev proj-data libgeotiff-dev libtiff-dev
    libpng-dev libopenjph-dev liblcms2-dev libpugixml-dev libcurl4-openssl-dev
    fonts-dejavu-core
)
tidy_packages=(clang clang-tidy)
test_packages=("${tidy_packages[@]}" clang-format nginx-light openssl)
bench_packages=(libgdal-dev libopenjp2-tools)

missing_packages()
{
    local package
    for package in "$@"; do
        if [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
            echo "$package"
        fi
    done
}

as_root()
{
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "Cannot install packages: neither root nor sudo. Please run as root: $*" >&2
        return 1
    fi
}

install_packages()
{
    if ! command -v dpkg-query >/dev/null; then
        echo "This is no Debian system: please see to it that the equivalents of these packages are there: $*" >&2
        return 0
    fi
    local missing
    mapfile -t missing < <(missing_packages "$@")
    if [ "${#missing[@]}" -eq 0 ]; then
        return 0
    fi
    echo "Installing ${missing[*]}"
    as_root apt-get update -q
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
}
