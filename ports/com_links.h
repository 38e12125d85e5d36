/// The links com<n>, by which a COM port number stands for a device.
///
/// They lie in the folder ports/ beside the programs, or beside the programs themselves. The one in ports/ comes first.
#pragma once

#include "ports/computer.h"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace ports {

/// The programs offer COM1 to this one.
inline constexpr int kMaxPorts = 16;

struct ComLink {
    int number = 0;                 ///< n of com<n>
    std::filesystem::path link;     ///< the link that counts
    std::filesystem::path ignored;  ///< the one beside the programs, where it does not count; empty: there is none
    std::filesystem::path target;   ///< what the link says
    std::filesystem::path device;   ///< the file that it leads to; empty: there is none
};

/// What a new link says.
struct NewTarget {
    std::filesystem::path path;
    bool isPlace = false;  ///< the place where the adapter is plugged in, since it shares its name with others
};

/// A link could not be made or removed; says why in the user's language.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where new links are made: ports/, or the programs' folder where that is missing.
std::filesystem::path linkFolder(const Computer& computer);

/// The links COM1 to COM16 that are there.
std::vector<ComLink> comLinks(const Computer& computer);

/// Makes com<number> a link to `device`, or to the stable name of that device, in the place of the link that was there.
///
/// @param device  a serial device or pseudo-terminal: its name in /dev, or any path to it; a path in /dev/serial is
///                kept, unless several adapters share it
/// @throws Refusal  `device` is not such a device, or the link cannot be made
NewTarget setComLink(const Computer& computer, int number, const std::string& device);

/// Removes com<number> from both folders.
/// @throws Refusal  there is no such link, or it cannot be removed
void removeComLink(const Computer& computer, int number);

}  // namespace ports
