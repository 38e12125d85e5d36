# The image is written to the unit, or the unit does not take it.

success() {
    begin_upgrade --rate 115200
    journal 'packet 300'
    upgrade_progress
    succeeded
    answer
    main_again 1.500
}

check_failed_cancel() {
    begin_upgrade --fault 'response:2203@0101D4#2'
    not_checked
    answer Escape
    main_again
    press UPGRADE
    succeeded
}

check_failed_go_on() {
    begin_upgrade --fault 'response:2203@0101D4#2'
    not_checked
    answer
    succeeded
    answer
    main_again 1.500
}

preparation_refused() {
    begin_upgrade --fault 'response:2203@300550*3'
    failed_and_again
}

start_refused() {
    begin_upgrade --fault 'response:2203@300551*3'
    start_refused_with 2203
    failed_and_again
}

error_1234_ok() {
    communication_error
    answer
    failed_and_again
}

error_1234_cancel() {
    communication_error
    answer Escape
    ended
}

start_missing() {
    patience=120
    transfer_fails 'lost@start*all' 'Before the first block: the unit did not ask for the image within 60 s' \
        '最初のブロックの前: ユニットが60秒以内に転送を開始しませんでした'
}

start_wrong() {
    patience=120
    transfer_fails 'answer:41@start*all' 'Before the first block: 10 unexpected bytes came, the last one 41' \
        '最初のブロックの前: 予期しないバイトを10回受信しました (最後は 41)'
}

packet_unanswered() {
    patience=180
    transfer_fails 'silence@packet500*10' 'Block 500 of 1920: sent 10 times; the unit did not answer' \
        'ブロック 500/1920: 10回送信しましたが、応答がありません'
}

transfer_cancelled() {
    transfer_fails can:2@packet9 'Block 9 of 1920: the unit cancelled the transfer (CAN)' \
        'ブロック 9/1920: ユニットが転送を中止しました (CAN)'
}

end_refused() {
    transfer_fails 'nak@eot*10' 'At the end of the image (EOT): sent 10 times; the unit refused it (NAK)' \
        'イメージの終わり (EOT): 10回送信しましたが、拒否されました (NAK)'
}
