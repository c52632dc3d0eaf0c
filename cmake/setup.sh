# Sourced by ./run, ./test and .ci/run: where the project is, how it fails, what it installs.

set -u
project=$(CDPATH='' cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)

fail() {
    printf '%s: %s\n' "$(basename -- "$0")" "$1" >&2
    exit 1
}

# True when a package is installed, for whichever architecture.
is_installed() {
    dpkg-query -W -f='${db:Status-Status}\n' "$1" 2>/dev/null | grep -qx installed
}

# Installs what packages.txt names and this machine lacks. Silent and quick when nothing is missing.
install_packages() {
    command -v dpkg-query >/dev/null || fail "this needs a Debian system: dpkg-query is missing"
    local entry name command missing=()
    while read -r entry; do
        name=${entry%%:*}
        command=${entry#"$name"}
        command=${command#:}
        [ -n "$command" ] && command -v "$command" >/dev/null && continue
        is_installed "$name" || missing+=("$name")
    done < <(sed -e 's/#.*//' -e 's/[[:space:]]//g' -e '/^$/d' "$project/packages.txt")
    [ ${#missing[@]} -eq 0 ] && return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "installing ${missing[*]} needs root or sudo"
        as_root=(sudo)
    fi
    echo "installing: ${missing[*]}" >&2
    local log
    log=$(mktemp) || fail "no temporary file can be made"
    # A broken source of somebody else's fails the update; whether that matters the installation tells.
    "${as_root[@]}" apt-get -o DPkg::Lock::Timeout=120 update >"$log" 2>&1 || true
    if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=120 \
        install -y --no-install-recommends "${missing[@]}" >>"$log" 2>&1; then
        tail -n 20 "$log" >&2
        rm -f "$log"
        fail "installing ${missing[*]} failed"
    fi
    rm -f "$log"
}

# True when the build folder of a preset was configured for this very project folder.
is_configured() {
    local folder=$project/build/$1
    [ -f "$folder/build.ninja" ] && grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$project" "$folder/CMakeCache.txt"
}

# configure_preset PRESET: quiet unless it fails, and skipped when the build folder is ready (the
# build itself notices changed CMake files).
configure_preset() {
    is_configured "$1" && return 0
    local log
    log=$(mktemp) || fail "no temporary file can be made"
    if ! (cd "$project" && cmake --fresh --preset "$1") >"$log" 2>&1; then
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
