# Sourced by the commands of this project: installs what is missing, and says what and why.

# need WHY PACKAGE...: adds the packages that are not there yet to what install_needed installs.
need() {
    local why=$1 package missing=()
    shift
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "Needed $why: ${missing[*]}"
    needed+=("${missing[@]}")
}

# Installs what need has collected; asks nothing, uses sudo only where it must.
install_needed() {
    [ ${#needed[@]} -eq 0 ] && return
    if ! command -v apt-get >/dev/null; then
        echo "There is no apt-get here: install by hand what you lack of these packages, named as in Debian: ${needed[*]}"
        needed=()
        return
    fi
    echo "Installing: ${needed[*]}"
    # A source that has nothing to do with these packages may be broken.
    apt_get update || echo "Not every package source could be read; going on with the others."
    apt_get install -y --no-install-recommends "${needed[@]}"
    needed=()
}

# Seconds to wait for another program that is installing something.
lock_patience=600

# apt_get ARGUMENT...: as root; shows only what goes wrong. apt-get's own way to wait leaves out the lock of an update.
apt_get() {
    local as_root=() complaints waiting=no end=$((SECONDS + lock_patience))
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    until complaints=$("${as_root[@]}" env LC_ALL=C DEBIAN_FRONTEND=noninteractive apt-get -q "$@" 2>&1 >/dev/null); do
        if [[ $complaints != *"Could not get lock"* || $SECONDS -ge $end ]]; then
            echo "$complaints" >&2
            return 1
        fi
        [ $waiting = yes ] || echo "Waiting for another program that installs something: ${complaints%%$'\n'*}"
        waiting=yes
        sleep 1
    done
}

needed=()

need_build() {
    need "to build" g++ cmake ninja-build pkg-config
    need "for the windows (Qt 6 and its Japanese texts)" qt6-base-dev qt6-translations-l10n
    need "to read INI files" libsimpleini-dev
    need "to keep the computer awake during a transfer" libdbus-1-dev
    need "to make the icons from their drawings" librsvg2-bin
}

need_fonts() { need "for Latin and Japanese text" fonts-liberation fonts-ipafont-gothic; }

need_tests() {
    need "for the tests" libgtest-dev lrzsz
    need "to compare the manuals with the texts of the program" python3
    need "for the tests of the sleep inhibitor" dbus-daemon
}

need_manual() { need "to make pages of the manual" python3-markdown; }

need_display() {
    need "for a virtual display and its window frames" xvfb openbox
    need "to work the windows and take pictures" xdotool imagemagick
}

need_windows() {
    need "to build for Windows" g++-mingw-w64-x86-64-posix icoutils libgtest-dev zip
    need "to unpack the source of Qt" dpkg-dev
}

need_wine() { need "to run programs for Windows, and to read what their messages say" wine64 xclip unzip; }

need_fuzzers() { need "for the fuzzers, and names in what they report" clang-14 libclang-rt-14-dev llvm-14; }

need_tour() {
    need "to let a write fail" strace
    need "to read the texts in the windows" at-spi2-core dbus-daemon gir1.2-atspi-2.0 python3-gi
}

need_packages() { need "to build and check packages" dpkg-dev lintian desktop-file-utils appstream; }
