/// The far end of a pseudo-terminal whose near end is the client's serial port. It holds the near end open as well, so
/// that the client may close and open it again.
#pragma once

#include "simulator/bytes.h"
#include "simulator/options.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace units {

class Pty {
public:
    /// A link replaces only another link.
    /// @throws std::system_error  no pseudo-terminal or link can be made
    explicit Pty(const Options& options);
    ~Pty();
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    const std::string& port() const { return port_; }

    /// Descriptor to wait on; -1 once unplugged.
    int descriptor() const { return master_; }

    /// Readable when someone has closed the near end; -1 once unplugged or if that cannot be watched.
    int closings() const { return closings_; }

    /// Takes note of those who have closed the near end: the port is no longer in exclusive use.
    void forgetClient() const;

    /// What the client has sent, at most `limit` bytes; empty if there is nothing now.
    Bytes read(std::size_t limit) const;

    /// Sends as much as fits now.
    /// @return the number of bytes sent
    std::size_t write(std::span<const std::uint8_t> bytes) const;

    /// Why the client's terminal settings are not raw, 8N1, without echo, at the speed in bits a second; or nothing.
    std::optional<std::string> settingsFlaw(unsigned speed) const;

    /// Hangs up for good and removes the link, if it is still this one's. Waits up to two seconds for the client to
    /// read what has been sent before.
    void unplug();

private:
    Pty() = default;
    void openBoth();
    void makeLink(const std::string& path);
    void removeLink();
    void closeAll();
    void waitUntilRead() const;

    int master_ = -1;
    int slave_ = -1;
    int closings_ = -1;
    std::string port_;
    std::string link_;
};

}  // namespace units
