# The program for service engineers.

saved_by_keyboard() {
    make held.bin --type-key SVA-STD --version 12750
    begin_service --rate 115200 --firmware-amplifier "$home/held.bin"
    keys Tab Tab Return
    soon "$patience" file_dialog
    keep dialog
    choose_file "$home/saved.bin"
    journal 'ACK of block 400'
    progress "$(catalogue IDS_FRMWAIT_CMD_CANCEL)"
    progress_box saved "$(in_language Succeed 正常終了)"
    answer
    cmp "$home/saved.bin" "$home/held.bin" >&2
    ready then
}

save_cancelled() {
    begin_service --rate 115200
    press SAVE_PRESENT
    choose_file "$home/saved.bin"
    journal 'ACK of block 100'
    progress "$(catalogue IDS_FRMWAIT_CMD_CANCEL)"
    keys Tab space
    progress_box closed "$(in_language Succeed 正常終了)"
    answer
    [ ! -e "$home/saved.bin" ]
    ready then
}

# What is read back stops short.
verification_differs() {
    begin_service --upload-blocks 1500 --rate 115200
    load fitting.bin --type-key SVA-STD --version 13500
    click "$(in_language Verification ベリファイ実行)"
    press UPGRADE
    journal 'ACK of block 200'
    progress "$(in_language Verification... ベリファイ中...)"
    progress_box differs "$(in_language Failed ベリファイ失敗)"
    answer
    main then 1.500
}
