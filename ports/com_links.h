/// The links com<n>, by which a COM port number stands for a device.
///
/// They lie in the folder ports/ beside the programs, or beside the programs themselves; ports/ takes precedence.
#pragma once

#include "ports/computer.h"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace ports {

/// The highest COM port number that the programs offer.
inline constexpr int kMaxPorts = 16;

struct ComLink {
    int number = 0;                 ///< n of com<n>
    std::filesystem::path link;     ///< the link in effect
    std::filesystem::path ignored;  ///< one beside the programs that `link` overrides; empty: none
    std::filesystem::path target;   ///< content of the link
    std::filesystem::path device;   ///< the file that it resolves to; empty: none
};

/// Target of a new link.
struct NewTarget {
    std::filesystem::path path;
    bool isPlace = false;  ///< names the USB socket, since the adapter's own name is not unique
};

/// A link could not be made or removed; what() says why, in the user's language.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where new links are made: ports/, or the programs' folder if that is missing.
std::filesystem::path linkFolder(const Computer& computer);

/// The existing links, COM1 to COM16.
std::vector<ComLink> comLinks(const Computer& computer);

/// Points com<number> to `device`, or to its stable name, replacing an existing link.
///
/// @param device  a serial device or pseudo-terminal: its name in /dev, or any path to it; a path in /dev/serial is
///                kept, unless several adapters share it
/// @throws Refusal  `device` is not such a device, or the link cannot be made
NewTarget setComLink(const Computer& computer, int number, const std::string& device);

/// Removes com<number> from both folders.
/// @throws Refusal  there is no such link, or it cannot be removed
void removeComLink(const Computer& computer, int number);

}  // namespace ports
