/// Whether this user may use a device or the programs' folder, and if not, why.
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

/// Whether this user may read and write the file or, for a folder, make and remove files in it.
Access accessTo(const std::filesystem::path& file);

/// Name of the current user.
std::string userName();

/// Name of the file's owner; links are not followed.
std::string ownerOf(const std::filesystem::path& file);

}  // namespace ports
