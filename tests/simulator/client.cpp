#include "tests/simulator/client.h"

#include "simulator/control_bytes.h"
#include "simulator/image.h"
#include "tests/simulator/frames.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace units::test {

Client::Client(const std::string& port) : descriptor_(open(port.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    if (descriptor_ < 0)
        throw std::system_error(errno, std::generic_category(), port);
    termios settings{};
    tcgetattr(descriptor_, &settings);
    cfmakeraw(&settings);
    settings.c_iflag &= static_cast<tcflag_t>(~(IXON | IXOFF));
    settings.c_cflag &= static_cast<tcflag_t>(~CSTOPB);
    cfsetspeed(&settings, B38400);
    tcsetattr(descriptor_, TCSANOW, &settings);
}

Client::~Client() { close(descriptor_); }

void Client::write(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
        if (count <= 0)
            throw std::system_error(errno, std::generic_category(), "write");
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

Bytes Client::read(std::size_t size, std::chrono::milliseconds timeout) {
    const auto end = std::chrono::steady_clock::now() + timeout;
    Bytes bytes;
    while (bytes.size() < size) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
        pollfd waiting{descriptor_, POLLIN, 0};
        if (left <= 0 || poll(&waiting, 1, static_cast<int>(left) + 1) <= 0)
            break;
        Bytes chunk(size - bytes.size());
        const ssize_t count = ::read(descriptor_, chunk.data(), chunk.size());
        if (count <= 0)
            break;
        bytes.insert(bytes.end(), chunk.begin(), chunk.begin() + count);
    }
    return bytes;
}

bool Client::hungUp() {
    pollfd waiting{descriptor_, POLLIN, 0};
    return poll(&waiting, 1, 5000) == 1 && (waiting.revents & POLLHUP) != 0;
}

std::string Client::ask(std::string_view command, std::chrono::milliseconds timeout) {
    write(requestFrame(command));
    Bytes reply;
    while (reply.size() < 2 || reply[reply.size() - 2] != kEtx) {
        const Bytes next = read(1, timeout);
        if (next.empty())
            return {};
        reply.push_back(next[0]);
    }
    return reply.size() < 7 ? std::string() : std::string(reply.begin() + 5, reply.end() - 2);
}

unsigned Client::download(const Bytes& image, CheckMode mode) {
    unsigned sent = 0;
    for (unsigned number = 1; number <= image.size() / kBlockSize; ++sent) {
        write(packetOf(image, number, mode));
        const Bytes answer = read(1);
        if (answer.empty())
            throw std::runtime_error("no answer to packet " + std::to_string(number));
        if (answer[0] == kAck)
            ++number;
    }
    Bytes answer;
    while (answer != Bytes{kAck}) {
        write(Bytes{kEot});
        answer = read(1);
        if (answer.empty())
            throw std::runtime_error("no answer to the end");
    }
    return sent;
}

}  // namespace units::test
