# Sourced by tools/tour.d/situation: the steps of a situation. Nothing here waits for a fixed time: a step waits for what it
# expects, and fails if that does not come.

# ---- what the windows say ----

in_language() { if [ "$language" = en ]; then echo "$1"; else echo "$2"; fi; }

# catalogue IDENTIFIER: the text of this entry of the string table.
catalogue() {
    local pattern='^DRAVOLT_STRING\([0-9]+, '$1', "(.*)", "(.*)"\)$' line
    line=$(grep -E "$pattern" src/resources/string_table.def) || { echo "no text $1" >&2; return 1; }
    printf '%b' "$(sed -E "s/$pattern/$(in_language '\1' '\2')/; s/\\\\\"/\"/g" <<<"$line")"
}

upgrade_button() { catalogue IDS_FRMMAIN_CMD_UPGRADE; }
not_effective() { echo "$(catalogue IDS_MSGERR_COMM_PORT1)$1$(catalogue IDS_MSGERR_COMM_PORT2)"; }
port_failure() {
    echo "COM1 ($home/com1): $1: Input/output error$(in_language \
        '; the adapter is unplugged, or there is no device behind the port' \
        '。アダプターが抜けているか、ポートにデバイスがありません')"
}

# ---- the ground ----

setting() { printf '[OPERATION]\nLanguage=%s\n[IFU]\nCOM=%s\n' "$1" "$2" >"$home/Setting.INI"; }
configured_language() { in_language ENGLISH JAPANESE; }

# units OPTION...: simulated units behind COM1.
units() {
    "$build/bin/dravolt-units" --link "$home/com1" --journal "$home/journal" "$@" >/dev/null 2>"$home/complaints" &
    units=$!
    soon "$patience" test -c "$home/com1" || { cat "$home/complaints" >&2; return 1; }
}

no_port() { ln -s /dev/no-such-device "$home/com1"; }

# journal PATTERN: waits until the units have written this down.
journal() { soon "$patience" grep -q "$1" "$home/journal" || { echo "the units do not get to \"$1\"" >&2; return 1; }; }

# open [NAME=VALUE...]: starts the program.
open() {
    (cd / && exec env QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 "$@" "$home/$edition") &
    program=$!
    processes+=("$program")
}

# open_without_language SYSTEM-LANGUAGE: where none has been chosen yet.
open_without_language() {
    setting '' 1
    units
    open LC_ALL="$1.UTF-8"
}
system_language() { in_language en_US ja_JP; }
other_language() { in_language ja_JP en_US; }

# begin UNIT-OPTION...: units and the program.
begin() {
    units "$@"
    open
}

# begin_loaded UNIT-OPTION...: and an image for the amplifier is loaded.
begin_loaded() {
    begin "$@"
    load fitting.bin --type-key SVA-STD --version 13500
    see "$main_window" SV-A100 1.500 "$(upgrade_button)"
}

# begin_upgrade UNIT-OPTION...: and is being written.
begin_upgrade() {
    begin_loaded "$@"
    press UPGRADE
}

# begin_service UNIT-OPTION...: the program for service engineers.
begin_service() {
    edition=dravolt-service
    begin "$@"
    ready service "$(catalogue IDS_FRMMAIN_CMD_SAVE_PRESENT)" "$(in_language 'for service' サービス用)" \
        "$(in_language Verification ベリファイ実行)"
}

# ---- what the operator sees ----

# look KIND ARGUMENT...: at the program's windows.
look() { tools/windows "$language" "$program" "$patience" "$@"; }

# see TITLE TEXT...: a window, which shows these texts.
see() { look window "$@"; }

# keep STEP: a picture of the screen once it stands still; what moves all the time is taken as it is.
keep() {
    step=$((step + 1))
    local file="$pictures/$situation-$step-$1.png" before='' try
    for try in {1..8}; do
        picture "$file"
        [ "$before" != "$(cksum <"$file")" ] || break
        before=$(cksum <"$file")
    done
}

# box STEP TEXT [BUTTON...]: a message box with exactly this text and these buttons (OK).
box() { titled_box "$1" Dravolt "${@:2}"; }

# titled_box STEP TITLE TEXT [BUTTON...]
titled_box() {
    local step_name=$1 title=$2 text=$3
    shift 3
    [ $# -gt 0 ] || set -- OK
    look box "^$title\$" "$text" "$@"
    keep "$step_name"
}

# progress_box STEP TEXT: one that the progress dialog shows.
progress_box() { titled_box "$1" "$(catalogue IDS_FRMWAIT_CAPTION)" "$2"; }

# report STEP TEXT: the common report of a failure.
report() { box "$1" "$(catalogue IDS_MSGERR_COMM_EXCEPTION)$2"; }

# choice_box STEP TEXT: asks whether to go on.
choice_box() { box "$1" "$2" OK "$(catalogue IDS_FRMWAIT_CMD_CANCEL)"; }

not_checked() { choice_box not-checked "$(catalogue IDS_MSGERR_NOTCHECK_CONFIRM)"; }
failed() { box failed "$(in_language Failed 異常終了)"; }
succeeded() { box succeeded "$(in_language Succeed 正常終了)"; }

# port_choice STEP: the start-up form with the choice of a port.
port_choice() {
    see '^Dravolt$' "$(catalogue IDS_FRMSTARTUP_LBL_PORT)" COM1 "$(catalogue IDS_FRMSTARTUP_CMD_TEST)" \
        "$(catalogue IDS_FRMSTARTUP_CMD_END)"
    keep "$1"
}

# main STEP TEXT...: the main window, which shows these texts.
main() {
    see "$main_window" "${@:2}"
    keep "$1"
}

# ready STEP TEXT...: the main window after the start, when no image is loaded.
ready() { main "$1" "$(upgrade_button) [off]" "${@:2}"; }

# main_again [VERSION]: the main window, ready for the next upgrade of the amplifier.
main_again() {
    main then "$(upgrade_button)" "$(catalogue IDS_FRMMAIN_CMD_LOADING)" "$(catalogue IDS_FRMMAIN_CMD_END)" "${1:-0.500}"
}

# progress TEXT...: the dialog that shows how far a run is, with the main window behind it.
progress() {
    see "^$(catalogue IDS_FRMWAIT_CAPTION)\$" "$@"
    keep progress
}

# The progress of an upgrade names the image.
upgrade_progress() {
    progress "$(in_language 'SV-A100 is under updating to ver1.500.' 'SV-A100 のソフトウェアを ver1.500 にアップデート中です。')"
}

# ended: the program ends by itself, with status 0, before any of its waits for the units could have ended.
ended() {
    soon 5 eval "! kill -0 $program" || { echo "the program does not end" >&2; return 1; }
    local status=0
    wait "$program" || status=$?
    [ "$status" -eq 0 ] || { echo "the program ended with status $status" >&2; return 1; }
}

# ---- what the operator does ----

# answer [KEY]: presses a key in the window that has the focus, which closes it.
answer() { close_by "${1:-Return}"; }

# click TEXT: on the control that has this text.
click() {
    local place
    place=$(look where "$1")
    local x=${place% *} y=${place#* }
    xdotool mousemove "$(scaled "$x")" "$(scaled "$y")" click 1
}

# press BUTTON: UPGRADE, LOADING, SAVE_PRESENT or END in the main window.
press() { click "$(catalogue "IDS_FRMMAIN_CMD_$1")"; }

# keys KEY...: pressed one after the other in the window that has the focus.
keys() { xdotool key "$@"; }

# make FILE IMAGE-OPTION...: an image.
make() { "$build/bin/dravolt-units" --make-image "$home/$1" "${@:2}"; }

# load FILE IMAGE-OPTION...: makes an image and loads it.
load() {
    make "$@"
    press LOADING
    choose_file "$home/$1"
}

# The close box, at the right end of the title bar.
press_close_box() {
    xdotool mousemove --window "$(window "$main_window")" -- $(($(scaled 365) - 9)) -10 click 1
}

# ---- what several situations do in the same way ----

# ends_with TEXT: the program says this and ends.
ends_with() {
    box said "$1"
    answer
    ended
}

# no_answer STEP...: the message of a command that was not answered or could not be sent, once for each step.
no_answer() {
    local name
    for name in "$@"; do
        box "$name" "$(catalogue IDS_MSGERR_COMM_TIMEOUT)"
        answer
    done
}

# What follows a port that does not open: the test fails without a port, which is said, too.
no_test_without_port() {
    answer
    no_answer no-answer
    box check-port "$(catalogue IDS_MSGERR_COMM_NO_PORT)"
    answer
    port_choice choice
}

# A failed upgrade says so, and another one can begin.
failed_and_again() {
    failed
    answer
    main_again
}

# start_refused_with CODE: the report of it.
start_refused_with() {
    report refused "$(in_language "The unit did not carry out command 51 in three attempts; its last answer: $1" \
        "コマンド 51 を3回送信しましたが、実行されませんでした。最後の応答: $1")"
    answer
}

# transfer_fails FAULT EN JA: the upgrade ends with this report, and another one can begin.
transfer_fails() {
    begin_upgrade --fault "$1"
    report refused "$(in_language "$2" "$3")"
    answer
    failed_and_again
}

communication_error() {
    begin_upgrade --fault 'response:1234@300550*3'
    choice_box error "$(catalogue IDS_MSGERR_COMM_NG)$(catalogue IDS_MSGERR_COMM_TIMEOUT2)"
}
