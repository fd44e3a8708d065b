# SPDX-License-Identifier: Apache-2.0
# Sourced by the other scripts: installs missing Debian packages and finds the repository.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# run_apt LOG ARGUMENT...: as root. What apt says is shown if it fails.
run_apt() {
    local log=$1 as_root=()
    shift
    if [ "$(id -u)" -ne 0 ]; then as_root=(sudo); fi
    if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q "$@" >"$log" 2>&1; then
        cat "$log" >&2
        echo "${0##*/}: apt-get $1 failed" >&2
        return 1
    fi
}

has_package() { dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'ok installed'; }

# need_packages NAME...: installs those that are not there, with sudo when not root.
need_packages() {
    local missing=() as_root=() log status=0
    for name in "$@"; do
        has_package "$name" || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "installing Debian packages with what they need, which may take some minutes:"
    echo "  ${missing[*]}"
    if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
        echo "${0##*/}: run it as root, or install sudo, or install these packages first" >&2
        return 1
    fi
    if [[ " ${missing[*]} " == *" openssh-server "* ]]; then
        # A test runs servers of its own; this keeps Debian from running one for the system.
        echo "the system's ssh server stays off until /etc/ssh/sshd_not_to_be_run is removed"
        [ "$(id -u)" -eq 0 ] || as_root=(sudo)
        "${as_root[@]}" mkdir -p /etc/ssh
        "${as_root[@]}" touch /etc/ssh/sshd_not_to_be_run
    fi
    log=$(mktemp)
    run_apt "$log" update &&
        run_apt "$log" install -y --no-install-recommends "${missing[@]}" || status=1
    rm -f "$log"
    return $status
}

# Node may be any from version 18 on that is in the path, and so may npm.
has_node() { [ "$(node -p 'parseInt(process.versions.node) >= 18' 2>/dev/null)" = true ]; }
need_node() {
    has_node && return 0
    need_packages nodejs || return 1
    hash -r
    has_node && return 0
    echo "${0##*/}: $(command -v node || echo node) is older than version 18; put a newer one" \
        "before it in the path" >&2
    return 1
}
need_npm() { npm --version >/dev/null 2>&1 || need_packages npm; }

# What the tests of the npm package need beside a browser.
has_web() {
    local name
    for name in "${web_packages[@]}"; do
        has_package "$name" || return 1
    done
    has_node && npm --version >/dev/null 2>&1
}

build_packages=(g++ cmake make pkg-config libvips-dev libcli11-dev nlohmann-json3-dev)
test_packages=(libgtest-dev libvips-tools parallel procps imagemagick openjdk-17-jdk-headless junit4
    python3 python3-numpy python3-pil binutils strace dpkg-dev file openssh-client openssh-server)
web_packages=(cmake make clang lld wasi-libc libclang-rt-14-dev-wasm32
    libc++-14-dev-wasm32 libc++abi-14-dev-wasm32 binaryen)
