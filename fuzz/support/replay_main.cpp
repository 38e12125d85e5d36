/// Runs a fuzz target once over each file that is named, or that lies in a folder that is named.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace fs = std::filesystem;

static int replayed = 0;

static void replay(const fs::path& path) {
    if (fs::is_directory(path)) {
        for (const fs::directory_entry& entry : fs::directory_iterator(path))
            replay(entry.path());
    } else if (fs::exists(path)) {
        std::cout << path.string() << std::endl;
        std::ostringstream content;
        content << std::ifstream(path, std::ios::binary).rdbuf();
        const std::string bytes = content.str();
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        ++replayed;
    }
}

int main(int argc, char* argv[]) {
    for (int i = 1; i < argc; ++i)
        replay(argv[i]);
    std::cout << replayed << " inputs" << std::endl;
    return replayed > 0 ? 0 : 1;
}
