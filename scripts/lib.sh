# What the scripts share; sourced, not run.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Needed to build everything, and to test it.
build_packages=(cmake g++ libcli11-dev libexpat1-dev libpoco-dev ninja-build)
test_packages=(binutils libgmock-dev libgtest-dev)

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "error: this needs root or sudo, and there is neither: $*" >&2
        exit 1
    fi
}

# Installs those of the Debian packages that are missing; does nothing, and needs no network, when all are there.
install_packages() {
    local missing=() package
    for package in "$@"; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing ${missing[*]}"
    as_root apt-get update -q
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# build PRESET [TARGET...]: configures build/PRESET and builds the targets, else everything; warnings are errors where CI
# is set.
build() {
    local preset=$1 warnings_as_errors=()
    shift
    # A compiler cache is used where there is one; nothing depends on it.
    if command -v ccache >/dev/null; then
        export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
    fi
    if [ "${CI:-}" = true ]; then
        warnings_as_errors=(-DTEV_WARNINGS_AS_ERRORS=ON)
    fi
    cmake --preset "$preset" "${warnings_as_errors[@]}"
    cmake --build --preset "$preset" ${1:+--target "$@"}
}
