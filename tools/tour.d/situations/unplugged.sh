# The adapter is pulled out.

unplugged_at_identification() {
    begin --fault unplug@0101D4
    ends_with "$(catalogue IDS_MSGERR_COMM_TIMEOUT)"
}

unplugged_in_check() {
    begin_upgrade --fault unplug@0101D4#2
    no_answer check
    not_checked
    answer Escape
    main_again
}

unplugged_at_start() {
    begin_upgrade --fault unplug@300551
    no_answer start-1 start-2 start-3
    start_refused_with 9999
    no_answer end-54 end-53
    failed_and_again
}

unplugged_in_transfer() {
    begin_upgrade --fault unplug@packet500
    report unplugged "$(in_language 'Block 500 of 1920: ' 'ブロック 500/1920: ')$(port_failure read)"
    answer
    no_answer end-54 end-53
    failed_and_again
    press END
    ended
}

unplugged_at_end() {
    begin_upgrade --fault unplug@300554
    no_answer end-54 end-53
    succeeded
    answer
    main_again 1.500
}

# The port goes between an acknowledgement and the next packet, which no unplugging hits: the system lets a write fail.
write_failed() {
    begin_loaded
    strace -qq -o /dev/null -P "$(readlink "$home/com1")" -e trace=write -e inject=write:error=EIO:when=100 \
        -p "$program" &
    soon "$patience" grep 'TracerPid:.*[1-9]' "/proc/$program/status"
    press UPGRADE
    titled_box write エラー "$(port_failure write)"
    answer
    report failed "$(in_language 'Block 97 of 1920: the port failed' 'ブロック 97/1920: ポートエラー')"
    answer
    failed_and_again
    # They await a packet, and complain about the commands that close the transfer.
    kill "$units"
    units=
}
