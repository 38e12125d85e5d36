#include "ports/command_line.h"
#include "ports/computer.h"
#include "ports/output.h"

#include <exception>
#include <iostream>

int main(int argc, char* argv[]) {
    ports::Output out(std::cout);
    ports::Output error(std::cerr);
    try {
        const ports::Computer computer{"/", std::filesystem::read_symlink("/proc/self/exe").parent_path()};
        return ports::run(computer, {argv + 1, argv + argc}, out, error);
    } catch (const std::exception& failure) {
        error << "dravolt-ports: " << failure.what() << '\n';
        return 1;
    }
}
