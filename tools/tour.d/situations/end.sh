# The operator closes the program.

closed() {
    begin_loaded
    press_close_box
    ended
}

# The progress dialog cannot be closed, by no key either; closing the main window ends the program at once.
closed_in_transfer() {
    begin_upgrade --rate 38400
    journal 'packet 200'
    upgrade_progress
    keys alt+F4 Escape
    journal 'packet 400'
    upgrade_progress
    press_close_box
    ended
}
