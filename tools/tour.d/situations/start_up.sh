# The program comes up, or says why not.

language_dialog() {
    open_without_language "$(system_language)"
    see '^Dravolt$' "$(catalogue IDS_FRMLANG_FRA_LANGUAGE)" \
        "$(catalogue IDS_FRMLANG_OPT_JAPAN)$(in_language '' ' [chosen]')" \
        "$(catalogue IDS_FRMLANG_OPT_ENGLISH)$(in_language ' [chosen]' '')" OK Cancel
    keep question
    answer
    ready then
}

other_language_chosen() {
    open_without_language "$(other_language)"
    click "$(in_language 英語 Japanese)"
    keep question
    click OK
    ready then
}

language_cancelled() {
    open_without_language "$(system_language)"
    click Cancel
    ready then
}

logo() {
    begin --fault delay:3000@0501
    await_window '^Dravolt$' "$patience"
    keep test
    ready then SV-A100 0.500 SV-IFU16 1.004
}

# The operator plugs the units in while the choice of a port stands.
port_missing() {
    no_port
    open
    box missing "$(not_effective 1)"
    no_test_without_port
    click COM1
    look where COM16 >/dev/null
    keep list
    keys Escape
    click "$(catalogue IDS_FRMSTARTUP_CMD_TEST)"
    box missing-again "$(not_effective 1)"
    answer
    port_choice choice-again
    units
    click "$(catalogue IDS_FRMSTARTUP_CMD_TEST)"
    ready then SV-A100 0.500 SV-IFU16 1.004
}

port_in_use() {
    units
    flock --no-fork "$home/com1" sleep 300 &
    processes+=($!)
    soon "$patience" eval "! flock --nonblock '$home/com1' true"
    open
    box in-use "$(catalogue IDS_MSGERR_COMM_PORTING)"
    no_test_without_port
    click "$(catalogue IDS_FRMSTARTUP_CMD_END)"
    ended
}

silent_unit() {
    begin --fault 'silence@0501*3'
    box check-port "$(catalogue IDS_MSGERR_COMM_NO_PORT)"
    answer
    port_choice choice
    click "$(catalogue IDS_FRMSTARTUP_CMD_TEST)"
    box not-effective "$(not_effective 1)"
    answer
    port_choice choice-again
    click "$(catalogue IDS_FRMSTARTUP_CMD_TEST)"
    ready then SV-A100 0.500 SV-IFU16 1.004
}

port_17() {
    setting "$(configured_language)" 17
    open
    report unknown "$(in_language 'Setting.INI: there is no port COM17; choose one of COM1 to COM16' \
        'Setting.INI: COM17 はありません。COM1～COM16 から選択して下さい')"
    answer
    port_choice choice
}

# No form has its texts yet, so that every message is still a Japanese one.
port_40000() {
    units
    setting "$(configured_language)" 40000
    open
    language=ja report overflow 'オーバーフロー: 40000 は -32768～32767 の範囲にありません'
    answer
    ready then
}

faulty_status() {
    begin --status 01
    ends_with "$(catalogue IDS_MSGERR_UNIT_NOTCONNECT)"
}

two_sensors() {
    begin --sensors 2
    ends_with "$(catalogue IDS_MSGERR_NOTONLY_ONE_SENSOR)"
}

no_type_tables() {
    rm "$home/TYPE.INI"
    begin
    ends_with "$(catalogue IDS_MSGERR_INIFILE_NOTEXIST)"
}

test_refused() {
    begin --fault response:2204@0501
    journal 'reply 0501'
    ended
}

second_copy() {
    begin
    local first=$program
    main first
    open
    ends_with "$(catalogue IDS_MSGDATA_STARTUP_ALREADY)"
    program=$first
    ready still
}

broken_type_table() {
    sed -i 's/^0A=.*/0A=12000/' "$home/TYPE.INI"
    begin
    report no-name "$(in_language "$home/TYPE.INI, section AMP_TYPE: an entry has no type name" \
        "$home/TYPE.INI セクション AMP_TYPE: 型名のない項目があります")"
    answer
    ready then
}

# A unit without a name: it fits an image whose name is unknown, too, as two empty names are equal.
nameless_unit() {
    begin --fault response:2204@0101D4
    ready nameless
    load unknown.bin --type-key UNKNOWN --version 1000
    press UPGRADE
    succeeded
    answer
}
