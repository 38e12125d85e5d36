/// Runs a fuzz target on each file in the given folders.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

int main(int argc, char* argv[]) {
    for (int i = 1; i < argc; ++i)
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::cout << entry.path().string() << std::endl;
            std::ostringstream content;
            content << std::ifstream(entry.path(), std::ios::binary).rdbuf();
            const std::string bytes = content.str();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        }
    return argc > 1 ? 0 : 1;
}
