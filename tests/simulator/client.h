#pragma once

#include "simulator/bytes.h"
#include "simulator/options.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace units::test {

/// A client on a serial port, as simple as can be.
class Client {
public:
    /// Opens the port and sets it to raw, 38400 bits a second, 8N1. Throws std::system_error if it cannot.
    explicit Client(const std::string& port);
    ~Client();
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void write(std::span<const std::uint8_t> bytes);

    /// Reads until `size` bytes have come, the time is over or the line has hung up.
    Bytes read(std::size_t size, std::chrono::milliseconds timeout = std::chrono::seconds(10));

    /// Whether the far end has hung up.
    bool hungUp();

    /// Sends a request and returns the content of the reply from the end code to the data; empty after a time-out.
    std::string ask(std::string_view command, std::chrono::milliseconds timeout = std::chrono::seconds(10));

    /// Sends packets, waiting for ACK after each, then EOT; the number of packets it took.
    unsigned download(const Bytes& image, CheckMode mode);

private:
    int descriptor_;
};

}  // namespace units::test
