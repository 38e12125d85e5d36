#include "simulator/peer.h"

#include "simulator/bytes.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace units {

namespace {

constexpr std::size_t kChunk = 256;

void check(int error, const char* what) {
    if (error != 0)
        throw std::system_error(error, std::generic_category(), what);
}

/// Both ends of a pipe, close-on-exec; this process's end is non-blocking.
std::array<int, 2> makePipe(int ownEnd) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        check(errno, "pipe");
    fcntl(ends[static_cast<std::size_t>(ownEnd)], F_SETFL, O_NONBLOCK);
    return ends;
}

/// Starts a shell command in a process group of its own, with no signal blocked.
// cppcheck-suppress passedByValue  ; posix_spawn() takes non-const strings
pid_t spawn(std::string command, int input, int output) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP);

    std::string shell = "/bin/sh";
    std::string option = "-c";
    const std::array<char*, 4> arguments = {shell.data(), option.data(), command.data(), nullptr};
    pid_t process = -1;
    const int error = posix_spawn(&process, shell.c_str(), &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    check(error, "cannot start a shell");
    return process;
}

std::string describeStatus(int status) {
    if (WIFEXITED(status))
        return "exited with status " + std::to_string(WEXITSTATUS(status));
    return "ended by signal " + std::to_string(WTERMSIG(status));
}

}  // namespace

Peer::~Peer() {
    if (process_ > 0) {
        kill(-process_, SIGKILL);
        finish(lastEvent_);
    }
}

Script Peer::begin(Time now) {
    const auto toPeer = makePipe(1);
    const auto fromPeer = makePipe(0);
    process_ = spawn(command_, toPeer[0], fromPeer[1]);
    close(toPeer[0]);
    close(fromPeer[1]);
    input_ = toPeer[1];
    output_ = fromPeer[0];
    journal_.note(now, "peer started: " + command_);
    return {};
}

Script Peer::take(std::uint8_t byte, Time now) {
    ++taken_;
    lastEvent_ = now;
    if (write(input_, &byte, 1) != 1)
        journal_.note(now, "peer does not read: byte " + hexNumber(byte, 2) + " lost");
    return {};
}

Script Peer::readable(Time now) {
    Bytes bytes(kChunk);
    const ssize_t count = read(output_, bytes.data(), bytes.size());
    if (count < 0)
        return {};
    bytes.resize(static_cast<std::size_t>(count));
    if (bytes.empty()) {
        finish(now);
        return {};
    }
    produced_ += bytes.size();
    lastEvent_ = now;
    if (bytes.size() <= 16)
        journal_.sent(now, "peer", bytes);
    else
        journal_.sent(now, "peer: " + std::to_string(bytes.size()) + " bytes");
    return {{{.bytes = std::move(bytes)}}, true};
}

void Peer::finish(Time now) {
    close(input_);
    close(output_);
    input_ = output_ = -1;
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = -1;
    journal_.note(now, "peer " + describeStatus(status) + ", took " + std::to_string(taken_) + " bytes, sent " +
                           std::to_string(produced_));
}

}  // namespace units
