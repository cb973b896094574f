# Sourced by ./run and ./test: installs what is missing on Debian 12, with sudo when not root.

# Installs those of the named packages that are not there; asks the package lists only when something is.
prepare_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || {
            echo "These packages are missing, and there is no sudo to install them: ${missing[*]}" >&2
            return 1
        }
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}" >&2
    "${as_root[@]}" apt-get update -qq >&2
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
}

build_packages=(g++ cmake ninja-build ccache pkg-config libsqlite3-dev libicu-dev libical-dev libcli11-dev
    nlohmann-json3-dev tzdata libpixman-1-dev libfreetype-dev libharfbuzz-dev libfontconfig-dev libsdl2-dev
    libsdl2-image-dev libx11-dev libdbus-1-dev librsvg2-bin fonts-dejavu-core fonts-wine)
test_packages=(libgtest-dev xvfb xdotool xclip dbus-daemon)

# Compiler output shared between build folders; the precompiled headers need these allowances.
export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS:-pch_defines,time_macros,include_file_mtime,include_file_ctime}
