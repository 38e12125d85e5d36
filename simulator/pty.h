/// The master of a pseudo-terminal whose slave is the client's serial port. It keeps the slave open as well, so that
/// the client may close and reopen it.
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
    /// @throws std::system_error  the pseudo-terminal or the link cannot be made
    explicit Pty(const Options& options);
    ~Pty();
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    const std::string& port() const { return port_; }

    /// Descriptor to wait on; -1 once unplugged.
    int descriptor() const { return master_; }

    /// Readable when someone has closed the slave; -1 once unplugged or if that cannot be watched.
    int closings() const { return closings_; }

    /// Handles such a close: the port is no longer in exclusive use.
    void forgetClient() const;

    /// What the client has sent, at most `limit` bytes; never blocks.
    Bytes read(std::size_t limit) const;

    /// Sends what fits without blocking.
    /// @return the number of bytes sent
    std::size_t write(std::span<const std::uint8_t> bytes) const;

    /// How the client's terminal settings differ from raw, 8N1, no echo, `speed` bit/s; nothing if they do not.
    std::optional<std::string> settingsFlaw(unsigned speed) const;

    /// Hangs up for good and removes the link if it is still ours. First waits up to two seconds for the client to read
    /// what has been sent.
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
