# Sourced by scripts that operate the program's windows without a display: a virtual desktop, mouse and keyboard.

# scaled PIXELS: as many in a program that is shown larger, see QT_SCALE_FACTOR.
scaled() { awk "BEGIN { print int($1 * ${QT_SCALE_FACTOR:-1}) }"; }

# Starts a virtual display with a window manager; everything started later shows there.
start_desktop() {
    exec {display_pipe}<> <(:)
    # It must not reset when the first of the clients here goes: that would end those that are just coming.
    Xvfb -noreset -wr -displayfd "$display_pipe" -screen 0 "$(scaled 1280)x$(scaled 800)x24" -nolisten tcp \
        >/dev/null 2>&1 &
    desktop_processes=($!)
    read -r -t 20 display <&"$display_pipe" || { echo "Xvfb does not start" >&2; return 1; }
    exec {display_pipe}<&-
    export DISPLAY=":$display"
    unset WAYLAND_DISPLAY QT_QPA_PLATFORM
    openbox >/dev/null 2>&1 &
    desktop_processes+=($!)
    soon 30 xdotool get_num_desktops || { echo "openbox does not start" >&2; return 1; }
}

# dark_desktop FOLDER: programs started later find the settings of a dark desktop in the folder.
dark_desktop() {
    export XDG_CONFIG_HOME=$1 XDG_CURRENT_DESKTOP=KDE KDE_SESSION_VERSION=5
    mkdir -p "$1"
    local group
    for group in Window Button Tooltip; do
        printf '[Colors:%s]\nBackgroundNormal=42,46,50\nForegroundNormal=252,252,252\n' "$group"
    done >"$1/kdeglobals"
    printf '[Colors:View]\nBackgroundNormal=27,30,32\nForegroundNormal=252,252,252\n' >>"$1/kdeglobals"
    printf '[Colors:Selection]\nBackgroundNormal=61,174,233\nForegroundNormal=252,252,252\n' >>"$1/kdeglobals"
}

# Starts a message bus, on which programs started later tell what their windows say.
start_bus() {
    local pipe
    exec {pipe}<> <(:)
    dbus-daemon --session --nofork --print-address="$pipe" >/dev/null 2>&1 &
    desktop_processes+=($!)
    read -r -t 20 DBUS_SESSION_BUS_ADDRESS <&"$pipe" || { echo "dbus-daemon does not start" >&2; return 1; }
    exec {pipe}<&-
    export DBUS_SESSION_BUS_ADDRESS
}

stop_desktop() { kill "${desktop_processes[@]}" 2>/dev/null || true; }

# soon SECONDS COMMAND...: waits up to this long for the command to succeed.
soon() {
    local end=$((SECONDS + $1))
    shift
    until "$@" >/dev/null 2>&1; do
        [ "$SECONDS" -ge "$end" ] && return 1
        sleep 0.1
    done
}

# await_units PROCESS LINK: waits until the simulated units have made their link.
await_units() {
    if ! soon 10 link_or_end "$@" || [ ! -e "$2" ]; then
        echo "the simulated units do not start" >&2
        return 1
    fi
}
link_or_end() { [ -e "$2" ] || ! kill -0 "$1"; }

# window TITLE: number of the visible window with this title (a regular expression).
window() { xdotool search --onlyvisible --name "$1" 2>/dev/null | tail -n 1 | grep .; }

# await_window TITLE [SECONDS]: waits until such a window is shown and has settled.
await_window() {
    soon "${2:-20}" window "$1" || { echo "no window \"$1\"" >&2; return 1; }
    sleep 0.3
}

# press TITLE X Y: clicks into the window, in unscaled pixels from its upper left corner.
press() {
    local id
    id=$(window "$1") || return 1
    xdotool mousemove --window "$id" "$(scaled "$2")" "$(scaled "$3")" click 1
    sleep 0.2
}

# picture FILE: the whole screen, cut to what stands on it; the same screen gives the same file.
picture() { import -strip -window root -trim +repage "$1"; }

# The middle of each control of the main window.
main_window='^Dravolt ver'
press_load() { press "$main_window" 188 146; }
press_upgrade() { press "$main_window" 84 186; }
press_end() { press "$main_window" 188 186; }
press_target() { press "$main_window" 31 $((40 + 16 * $1)); }

# load_image FILE: "Loading file", then the file in the dialog.
load_image() {
    press_load
    choose_file "$1"
}

# choose_file FILE: in the file dialog that is opening; comes back when it is closed.
choose_file() {
    soon 20 file_dialog || { echo "no file dialog" >&2; return 1; }
    xdotool type --delay 5 "$1"
    close_by Return
}
file_dialog() { xdotool getactivewindow getwindowname | grep -E '^(Open|Save As|開く|名前を付けて保存)$'; }

# close_by KEY: presses it in the window that has the focus, which closes.
close_by() {
    local id
    id=$(xdotool getactivewindow)
    xdotool key "$1"
    soon 20 eval "! xdotool getwindowname $id" || { echo "the window does not close" >&2; return 1; }
}
