# Sourced by commands that start others: what they start ends with them, and their builds do not disturb each other.

declare -A started=()

# launch COMMAND...: in the background, as a process group of its own, whose number is $!.
launch() {
    set -m
    "$@" &
    set +m
    started[$!]=yes
}

# await_end PROCESS: waits for it and gives its status; ends what it has left running.
await_end() {
    local status=0
    wait "$1" || status=$?
    end_group "$1"
    unset "started[$1]"
    return "$status"
}

# attended COMMAND...: in the foreground, except that a signal to this shell need not wait for its end.
attended() {
    launch "$@"
    await_end $!
}

end_group() { kill -- "-$1" 2>/dev/null || true; }

end_started() {
    local group
    for group in "${!started[@]}"; do end_group "$group"; done
    for group in "${!started[@]}"; do wait "$group" || true; done
}
trap end_started EXIT

# build PRESET [OPTION...]: configures and builds. Others that build here wait until the shell of the caller has ended, so
# call it as `attended build`.
build() {
    local lock
    mkdir -p build
    exec {lock}>build/lock
    flock -n "$lock" || { echo "Waiting for another build in this folder" && flock "$lock"; }
    cmake --preset "$1" >/dev/null
    cmake --build --preset "$@"
}
