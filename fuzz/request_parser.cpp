/// The simulator's request parser. A byte 0xFF of the input is a silence of the line, every other byte itself.
#include "simulator/request_parser.h"
#include "support/input.h"
#include "support/require.h"

using units::RequestParser;

/// The one frame that carries `command`.
static std::string frameOf(const std::string& command) {
    const std::string covered = "00000" + command + '\x03';
    char check = 0;
    for (const char c : covered)
        check = static_cast<char>(check ^ c);
    return '\x02' + covered + check;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    RequestParser parser;
    std::string stream;  // since the last silence
    while (!input.empty()) {
        const std::uint8_t byte = input.byte();
        const bool silence = byte == 0xFF;
        stream = silence ? std::string() : stream + static_cast<char>(byte);
        const RequestParser::Result result = silence ? parser.silence() : parser.take(byte);
        require(!result.command || !result.violation, "a byte completes a request or breaks one");
        require(!result.command || stream.ends_with(frameOf(*result.command)), "a command has come in its frame");
        require(parser.frame().size() <= RequestParser::kMaxCommand + 8, "a frame has a bounded size");
    }
    parser.silence();
    RequestParser::Result last;
    for (const char c : frameOf("0501"))
        last = parser.take(static_cast<std::uint8_t>(c));
    require(last.command == "0501", "after a silence a good request is taken, whatever was before it");
    return 0;
}
