#include "ports/processes.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace fs = std::filesystem;

namespace ports {

namespace {

std::string nameOf(const fs::path& process) {
    std::ifstream file(process / "comm");
    std::string name;
    std::getline(file, name);
    return name;
}

/// The PIDs of all processes.
std::vector<int> processes(const fs::path& proc) {
    std::vector<int> numbers;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(proc, none)) {
        const std::string name = entry.path().filename();
        if (std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; }))
            numbers.push_back(std::stoi(name));
    }
    return numbers;
}

bool hasOpen(const fs::path& process, const struct stat& device) {
    std::error_code none;
    for (const auto& file : fs::directory_iterator(process / "fd", none)) {
        struct stat opened {};
        if (::stat(file.path().c_str(), &opened) == 0 && S_ISCHR(opened.st_mode) && opened.st_rdev == device.st_rdev)
            return true;
    }
    return false;
}

/// The processes that hold a lock on the file; a line of the list looks like "1: FLOCK ADVISORY WRITE 1234 00:05:678 0
/// EOF".
std::set<int> lockers(const fs::path& proc, const struct stat& file) {
    std::ostringstream place;
    place << std::hex;
    for (const unsigned part : {major(file.st_dev), minor(file.st_dev)})
        place << (part < 0x10 ? "0" : "") << part << ':';
    place << std::dec << file.st_ino;
    std::set<int> found;
    std::ifstream list(proc / "locks");
    for (std::string line; std::getline(list, line);) {
        std::istringstream words(line);
        std::string ignored;
        std::string locked;
        int process = 0;
        if (words >> ignored >> ignored >> ignored >> ignored >> process >> locked && locked == place.str())
            found.insert(process);
    }
    return found;
}

}  // namespace

std::vector<Process> holdersOf(const Computer& computer, const fs::path& node) {
    struct stat device {};
    if (::stat(node.c_str(), &device) != 0 || !S_ISCHR(device.st_mode))
        return {};
    const fs::path proc = computer.root / "proc";
    std::set<int> numbers = lockers(proc, device);
    for (const int number : processes(proc))
        if (hasOpen(proc / std::to_string(number), device))
            numbers.insert(number);
    std::vector<Process> holders;
    holders.reserve(numbers.size());
    for (const int number : numbers)
        holders.push_back({number, nameOf(proc / std::to_string(number))});
    return holders;
}

bool isRunning(const Computer& computer, const std::string& name) {
    const fs::path proc = computer.root / "proc";
    const std::vector<int> numbers = processes(proc);
    return std::any_of(numbers.begin(), numbers.end(),
                       [&](int number) { return nameOf(proc / std::to_string(number)) == name; });
}

}  // namespace ports
