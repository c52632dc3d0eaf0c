# Sourced by ./run, ./test and .ci/run: where the project is, how it fails, what it installs.

set -u
project=$(CDPATH='' cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)

fail() {
    printf '%s: %s\n' "$(basename -- "$0")" "$1" >&2
    exit 1
}

# Installs what packages.txt names and this machine lacks. Silent and quick when nothing is missing.
install_packages() {
    command -v dpkg-query >/dev/null || fail "this needs a Debian system: dpkg-query is missing"
    local wanted missing=() name
    wanted=$(sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$project/packages.txt")
    for name in $wanted; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null)" = installed ] || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "installing ${missing[*]} needs root or sudo"
        as_root=(sudo)
    fi
    echo "installing: ${missing[*]}" >&2
    local log
    log=$(mktemp) || fail "no temporary file can be made"
    if ! { "${as_root[@]}" apt-get update &&
           "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
               apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
        tail -n 20 "$log" >&2
        rm -f "$log"
        fail "installing ${missing[*]} failed"
    fi
    rm -f "$log"
}

# configure_preset PRESET: quiet unless it fails, and skipped when the build folder is ready (the
# build itself notices changed CMake files).
configure_preset() {
    [ -f "$project/build/$1/build.ninja" ] && return 0
    local log
    log=$(mktemp) || fail "no temporary file can be made"
    if ! (cd "$project" && cmake --preset "$1") >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        fail "configuring the $1 preset failed"
    fi
    rm -f "$log"
}

# build_preset PRESET [TARGET...]
build_preset() {
    local preset=$1
    shift
    configure_preset "$preset"
    local targets=()
    [ $# -gt 0 ] && targets=(--target "$@")
    (cd "$project" && cmake --build --preset "$preset" "${targets[@]}") >&2 || fail "building the $preset preset failed"
}
