# What the scripts share: where the tree is, and how what it needs gets installed. Sourced, not run.
# shellcheck shell=bash

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

zyn_packages=(cmake ninja-build g++ qt6-base-dev)

# Installs whichever of the needed packages are missing.
install_what_is_missing() {
    local missing=() package
    for package in "${zyn_packages[@]}"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    command -v apt-get >/dev/null || { echo "Install ${missing[*]} first: there is no apt-get here to do it" >&2; exit 1; }
    local as_root=(env DEBIAN_FRONTEND=noninteractive)
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { echo "Install ${missing[*]} first: this needs root or sudo" >&2; exit 1; }
        as_root=(sudo "${as_root[@]}")
    fi
    echo "Installing ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# Ends a script that takes no arguments when it gets some, with its own usage().
take_no_arguments() {
    case "${1:-}" in
    '') ;;
    --help | -h) usage; exit ;;
    *) usage >&2; exit 2 ;;
    esac
}

# Makes what the Debian packages are made with one of the needed packages.
need_packaging() {
    zyn_packages+=(binutils dpkg-dev file)
}

# Configures and builds the tree with the preset $1; says what went wrong only when something did.
build_preset() {
    echo "Building ($1)"
    mkdir -p build
    cmake --preset "$1" >"build/$1-configure.log" 2>&1 || { cat "build/$1-configure.log" >&2; return 1; }
    cmake --build "build/$1" "${@:2}"
}
