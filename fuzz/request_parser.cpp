/// The simulator's request parser. A byte 0xFF of the input is a silence of the line, every other byte itself.
#include "simulator/request_parser.h"
#include "support/input.h"
#include "support/require.h"

#include <algorithm>

using units::RequestParser;

namespace {

/// The one frame that carries `command`.
std::string frameOf(const std::string& command) {
    const std::string covered = "00000" + command + '\x03';
    char check = 0;
    for (const char c : covered)
        check = static_cast<char>(check ^ c);
    return '\x02' + covered + check;
}

bool isCommand(const std::string& text) {
    return text.size() <= RequestParser::kMaxCommand && std::all_of(text.begin(), text.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z');
           });
}

/// Whether `text` is the one frame of a command.
bool isFrame(const std::string& text) {
    const std::string command = text.size() >= 8 ? text.substr(6, text.size() - 8) : std::string();
    return isCommand(command) && text == frameOf(command);
}

void checkResult(const RequestParser::Result& result, const std::string& stream) {
    require(!result.command || !result.violation, "a byte completes a request or breaks one");
    if (result.command) {
        require(isCommand(*result.command), "a command is upper-case letters and digits");
        require(stream.ends_with(frameOf(*result.command)), "a command has come in its frame, to the letter");
    }
    require(result.command || !isFrame(stream), "a frame after a silence is taken");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    RequestParser parser;
    std::string stream;  // since the last silence
    while (!input.empty()) {
        const std::uint8_t byte = input.byte();
        const bool silence = byte == 0xFF;
        if (silence)
            stream.clear();
        else
            stream += static_cast<char>(byte);
        checkResult(silence ? parser.silence() : parser.take(byte), stream);
        require(parser.frame().size() <= RequestParser::kMaxCommand + 8, "a frame has a bounded size");
    }
    parser.silence();
    RequestParser::Result last;
    for (const char c : frameOf("0501"))
        last = parser.take(static_cast<std::uint8_t>(c));
    require(last.command == "0501", "after a silence a good request is taken, whatever was before it");
    return 0;
}
