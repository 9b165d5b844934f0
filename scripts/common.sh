# What the scripts share: the top of the tree, installing packages, and timing steps. Sourced, not run.
# shellcheck shell=bash

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

zyn_packages=(cmake ninja-build g++ qt6-base-dev)

# Uses a compiler cache when there is one. It accepts precompiled headers only when told that no source uses __TIME__.
if command -v ccache >/dev/null; then
    export CMAKE_C_COMPILER_LAUNCHER=${CMAKE_C_COMPILER_LAUNCHER-ccache}
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
    export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS-pch_defines,time_macros}
fi

# Installs whichever of the needed packages are missing.
install_what_is_missing() {
    local missing=() package
    for package in "${zyn_packages[@]}"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    command -v apt-get >/dev/null ||
        { echo "Install ${missing[*]} first: there is no apt-get here to do it" >&2; exit 1; }
    local as_root=(env DEBIAN_FRONTEND=noninteractive)
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { echo "Install ${missing[*]} first: this needs root or sudo" >&2; exit 1; }
        as_root=(sudo "${as_root[@]}")
    fi
    echo "Installing ${missing[*]}"
    "${as_root[@]}" apt-get update -qq || return
    "${as_root[@]}" sh -c "$install_without_services" install "${missing[@]}" >/dev/null
}

# Installs its arguments and starts none of their services: the tests start their own, and a machine may have a modem.
# Debian asks policy-rc.d whether a service may start.
# shellcheck disable=SC2016 # the shell that runs it expands it
install_without_services='
    policy=/usr/sbin/policy-rc.d
    if [ ! -e "$policy" ]; then
        trap "rm -f $policy" EXIT
        trap "exit 1" INT TERM HUP
        printf "#!/bin/sh\nexit 101\n" >"$policy"
        chmod 755 "$policy"
    fi
    apt-get install -y -qq --no-install-recommends "$@"'

# Runs a command as the step $1 of a script.
timed() {
    local name=$1 start=$SECONDS status=0
    shift
    "$@" || status=$?
    zyn_steps+=("$name:$((SECONDS - start))")
    return "$status"
}

# Every script reports how long its steps took, however it ends.
zyn_steps=()
tell_steps() {
    local row
    [ ${#zyn_steps[@]} -gt 0 ] || return 0
    echo "Time taken:"
    for row in "${zyn_steps[@]}" "all:$SECONDS"; do
        printf '%6d s  %s\n' "${row##*:}" "${row%:*}"
    done
}
trap tell_steps EXIT

# Answers any argument with the script's usage().
take_no_arguments() {
    case "${1:-}" in
    '') ;;
    --help | -h) usage; exit ;;
    *) usage >&2; exit 2 ;;
    esac
}

# Adds what making the Debian packages takes.
need_packaging() {
    zyn_packages+=(binutils doxygen dpkg-dev file)
}

# Adds the telephony stacks that tests run, and what they run beside.
need_modem() {
    zyn_packages+=(dbus libglib2.0-bin modemmanager ofono polkitd python3-dbusmock)
}

# Adds what the QML module and the handset on the screen take: to build them, to run what they import, a font, and the
# tools of translators. Debian 12's QML modules do not name each other.
need_quick() {
    zyn_packages+=(qt6-declarative-dev qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript
        qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-layouts qml6-module-qtquick-templates
        qml6-module-qtquick-window qml6-module-qttest qt6-tools-dev qt6-l10n-tools fonts-dejavu-core)
}

# Configures and builds the tree with the preset $1. Shows CMake's output only when it fails.
build_preset() {
    configure_preset "$1" || return
    echo "Building ($1)"
    cmake --build "build/$1" "${@:2}"
}

configure_preset() {
    mkdir -p build
    cmake --preset "$1" >"build/$1-configure.log" 2>&1 || { cat "build/$1-configure.log" >&2; return 1; }
}

# Sets `architecture`, Debian's name of it, to what follows --arch when the other arguments begin with that, and to $1
# otherwise; `triplet` to what begins the names of its compilers, and `preset` to the one that builds for it. The rest
# of the arguments goes to `arguments`.
# shellcheck disable=SC2034 # the scripts use them
take_architecture() {
    architecture=$1 arguments=("${@:2}")
    case "${2:-}" in
    --help | -h) usage; exit ;;
    --arch) architecture=${3:---} arguments=("${@:4}") ;;
    esac
    case "$architecture" in
    '') ;;
    armhf) triplet=arm-linux-gnueabihf preset=arm ;;
    arm64) triplet=aarch64-linux-gnu preset=arm64 ;;
    *) usage >&2; exit 2 ;;
    esac
}
