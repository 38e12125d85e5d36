/// Whether this user may use a device or the programs' folder, and what stands in the way.
#pragma once

#include <filesystem>
#include <string>

namespace ports {

/// What this user may do with a file.
struct Access {
    enum class Kind {
        granted,
        loginAgain,  ///< the user is in the group that may, but was not yet when the session began
        notInGroup,  ///< members of the group may
        denied,      ///< no group helps
    };
    Kind kind = Kind::denied;
    std::string group;  ///< the group that may, with loginAgain and notInGroup
};

/// Reading and writing of the file; for a folder, making and removing files in it.
Access accessTo(const std::filesystem::path& file);

/// Name of the user who runs this.
std::string userName();

/// Name of the file's owner; a link's own, not that of the file behind it.
std::string ownerOf(const std::filesystem::path& file);

}  // namespace ports
