# What the scripts share; sourced, not run.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Needed to run what is built, to build it, to test it, to build it for 32 bit, for a private SFTP server, to fuzz, to
# measure, and to make Debian packages.
run_packages=(openssh-client)
build_packages=(cmake g++ libcli11-dev libedit-dev libexpat1-dev libpoco-dev libunistring-dev ninja-build)
test_packages=(binutils libgmock-dev libgtest-dev python3-jsonschema)
build_32_packages=(g++-multilib googletest)
server_packages=(libnss-wrapper openssh-server)
fuzz_packages=(clang libclang-rt-14-dev)
bench_packages=(gnuplot-nox libbenchmark-dev python3)
packaging_packages=(dpkg-dev file lintian man-db)

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

# Runs a command as root, during which no package starts a service on this machine.
without_services() (
    policy=/usr/sbin/policy-rc.d
    if [ ! -e "$policy" ]; then
        trap 'as_root rm -f "$policy"' EXIT
        printf '#!/bin/sh\nexit 101\n' | as_root install -m 0755 /dev/stdin "$policy"
    fi
    as_root "$@"
)

# Installs those of the Debian packages that are missing; does nothing, and needs no network, when all are there.
install_packages() {
    local missing=() package
    for package in "$@"; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing ${missing[*]}"
    as_root apt-get update -q
    without_services env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
    # A server that is here for its program only does not come up with the machine either.
    if [[ " ${missing[*]} " == *" openssh-server "* ]]; then
        as_root update-rc.d ssh disable
    fi
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

# in_variant PRESET COMMAND...: runs a program that was built with this preset. The thread sanitizer ends at once where the
# kernel puts something into the places of its own memory, which it does only when it may choose freely.
in_variant() {
    local preset=$1
    shift
    if [ "$preset" != tsan ]; then
        "$@"
    elif setarch -R true 2>/dev/null; then
        setarch -R "$@"
    else
        echo "warning: setarch -R is refused here; programs may end with 'unexpected memory mapping'" >&2
        "$@"
    fi
}
