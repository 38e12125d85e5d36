# Sourced by the commands of this project: installs what is missing, and says what and why.

# need WHY PACKAGE...: adds the packages that are not there yet to what install_needed installs.
need() {
    local why=$1 package missing=()
    shift
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "Missing, $why: ${missing[*]}"
    needed+=("${missing[@]}")
}

# Installs what need has collected; asks nothing, uses sudo only where it must.
install_needed() {
    [ ${#needed[@]} -eq 0 ] && return
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    echo "Installing: ${needed[*]}"
    "${as_root[@]}" apt-get update -q >/dev/null
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${needed[@]}" \
        >/dev/null
    needed=()
}

needed=()

need_build() {
    need "to build" g++ cmake ninja-build pkg-config
    need "for the windows (Qt 6 and its Japanese texts)" qt6-base-dev qt6-translations-l10n
    need "to read INI files" libsimpleini-dev
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
