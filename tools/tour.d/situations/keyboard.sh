# A whole upgrade without the mouse.

by_keyboard() {
    begin
    ready start
    make interface.bin --type-key SVIFU16 --version 2345
    keys shift+Tab space
    ready interface "$(in_language 'Target: interface unit' '対象: インターフェースユニット') [chosen]"
    keys Tab Return
    choose_file "$home/interface.bin"
    main loaded 2.345 "$(upgrade_button)"
    keys Tab Return
    succeeded
    answer space
    main_again 2.345
    keys Tab Return
    ended
}
