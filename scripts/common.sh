# SPDX-License-Identifier: MIT
# Shared by the commands at the top of the tree.

# What the program is built from and runs with.
program_packages=(
    g++ cmake ninja-build ccache pkg-config
    qt6-base-dev qt6-base-private-dev qt6-svg-dev libqt6svg6 qt6-qpa-plugins qcoro-qt6-dev
    x11proto-dev libxcb1-dev libxcb-xinput-dev libxcb-xtest0-dev libxcb-xfixes0-dev libxcb-res0-dev
    libxcb-keysyms1-dev libxcb-xkb-dev libxcb-randr0-dev libxcb-shape0-dev libxcb-composite0-dev
    libxcb-render0-dev libxcb-shm0-dev libsystemd-dev
    libsecret-1-dev libcld2-dev libcurl4-openssl-dev ca-certificates
    libspeechd-dev libspeechd2 speech-dispatcher speech-dispatcher-espeak-ng espeak-ng-data
    at-spi2-core dbus apertium apertium-eng-spa apertium-fr-es
    libtesseract-dev libtesseract5
    tesseract-ocr-eng tesseract-ocr-chi-sim tesseract-ocr-chi-tra tesseract-ocr-jpn tesseract-ocr-kor
    fonts-noto-core
)
# A desktop of its own for the demonstration, with an editor to select text in.
demo_packages=(xvfb openbox dbus-daemon mousepad fonts-noto-core x11-xkb-utils)
# What the tests drive.
test_packages=(
    libgtest-dev libgmock-dev "${demo_packages[@]}"
    openssl gnome-keyring xterm lxterminal trayer xcompmgr x11-xserver-utils
    desktop-file-utils appstream dpkg-dev lintian
    featherpad firefox-esr chromium fonts-noto-cjk fonts-noto-color-emoji
)

# What the benchmark compares with.
bench_packages=(xdotool xclip tesseract-ocr)

# Installs the packages that are missing, once, with root's or sudo's rights.
install_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || {
            echo "Missing Debian packages, and no sudo to install them with: ${missing[*]}" >&2
            return 1
        }
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# Installs the icon packages of package.json when its lock file has changed. Tovi builds and works without them,
# so a failure is only told.
install_icons() {
    local installed=node_modules/.installed-lock.json
    cmp -s package-lock.json "$installed" && return 0
    {
        { command -v npm || install_packages nodejs npm; } &&
            npm ci --ignore-scripts --no-audit --no-fund --fetch-retries=1 --fetch-timeout=60000 &&
            cp package-lock.json "$installed"
    } >/dev/null 2>&1 || echo "The icon packages could not be installed: building without icons" >&2
}

# build PRESET TARGET...: configures and builds.
build() {
    local preset=$1
    shift
    install_icons
    cmake --preset "$preset" >/dev/null || return 1
    cmake --build --preset "$preset" ${1:+--target "$@"}
}
