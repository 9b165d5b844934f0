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
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    echo "Installing ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# Configures and builds the tree with the preset $1; says what went wrong only when something did.
build_preset() {
    echo "Building ($1)"
    mkdir -p build
    cmake --preset "$1" >"build/$1-configure.log" 2>&1 || { cat "build/$1-configure.log" >&2; return 1; }
    cmake --build "build/$1"
}
