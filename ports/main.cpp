#include "ports/command_line.h"

#include <exception>
#include <iostream>

int main(int argc, char* argv[]) {
    try {
        const ports::Machine machine{"/", std::filesystem::read_symlink("/proc/self/exe").parent_path()};
        return ports::run(machine, {argv + 1, argv + argc}, std::cout, std::cerr);
    } catch (const std::exception& failure) {
        std::cerr << "dravolt-ports: " << failure.what() << '\n';
        return 1;
    }
}
