#include "ports/access.h"

#include <algorithm>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace ports {

namespace {

std::string nameOfUser(uid_t user) {
    const passwd* entry = ::getpwuid(user);
    return entry != nullptr ? entry->pw_name : std::to_string(user);
}

/// Whether the group database lists this user in the group, even if this session is not in it yet.
bool isListedIn(gid_t group) {
    const passwd* user = ::getpwuid(::geteuid());
    if (user == nullptr)
        return false;
    int count = 0;
    ::getgrouplist(user->pw_name, user->pw_gid, nullptr, &count);
    std::vector<gid_t> groups(static_cast<std::size_t>(count));
    ::getgrouplist(user->pw_name, user->pw_gid, groups.data(), &count);
    return std::find(groups.begin(), groups.end(), group) != groups.end();
}

}  // namespace

Access accessTo(const std::filesystem::path& file) {
    struct stat state {};
    if (::stat(file.c_str(), &state) != 0)
        return {};
    const bool isFolder = S_ISDIR(state.st_mode);
    if (::faccessat(AT_FDCWD, file.c_str(), isFolder ? W_OK | X_OK : R_OK | W_OK, AT_EACCESS) == 0)
        return {Access::Kind::granted, {}};
    const mode_t needed = isFolder ? S_IWGRP | S_IXGRP : S_IRGRP | S_IWGRP;
    const group* group = ::getgrgid(state.st_gid);
    if ((state.st_mode & needed) != needed || state.st_gid == 0 || group == nullptr)
        return {};
    const std::string name = group->gr_name;
    return {isListedIn(state.st_gid) ? Access::Kind::loginAgain : Access::Kind::notInGroup, name};
}

std::string userName() { return nameOfUser(::geteuid()); }

std::string ownerOf(const std::filesystem::path& file) {
    struct stat state {};
    return ::lstat(file.c_str(), &state) == 0 ? nameOfUser(state.st_uid) : std::string();
}

}  // namespace ports
