# Sourced by the other scripts: installs missing Debian packages and finds the repository.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# need_packages NAME...: installs those that are not there, with sudo when not root.
need_packages() {
    local missing=() as_root=()
    for name in "$@"; do
        dpkg-query -W -f='${Status}' "$name" 2>/dev/null | grep -q 'ok installed' ||
            missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "installing: ${missing[*]}"
    if [ "$(id -u)" -ne 0 ]; then as_root=(sudo); fi
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

build_packages=(g++ cmake make pkg-config libvips-dev libcli11-dev nlohmann-json3-dev)
test_packages=(libgtest-dev libvips-tools parallel procps imagemagick openjdk-17-jdk-headless junit4
    python3 binutils strace dpkg-dev file)
