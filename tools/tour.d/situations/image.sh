# An image is loaded.

image_loaded() {
    begin
    ready before "$(catalogue IDS_FRMMAIN_LBL_PRESENT)" "$(catalogue IDS_FRMMAIN_LBL_REWRITEING)"
    make interface.bin --type-key SVIFU16 --version 2345
    press LOADING
    see "$(in_language '^Open$' '^開く$')" "$(in_language 'Look in:' 'アドレス:')" \
        "$(in_language Cancel キャンセル)" "$(catalogue IDS_FILTER_BINFILE | cut -d '|' -f 1)"
    keep dialog
    answer Escape
    load amplifier.bin --type-key SVA-STD --version 13500
    main amplifier SV-A100 1.500 "$(upgrade_button)"
    load interface.bin --type-key SVIFU16 --version 2345
    main interface SV-IFU16 2.345 "$(upgrade_button)"
}

image_not_adapted() {
    begin
    load interface.bin --type-key SVIFU16 --version 2345
    press UPGRADE
    box not-adapted "$(catalogue IDS_MSGERR_NOTADAPTED)"
    answer
    main still 2.345 "$(upgrade_button)"
}

version_40000() {
    begin
    load new.bin --type-key SVA-STD --version 40000
    report overflow "$(in_language 'Overflow: the version word of the image is 40000, above 32767' \
        'オーバーフロー: イメージのバージョン値 40000 が 32767 を超えています')"
    answer
    main then
}
