/// The simulator's request parser. A byte 0xFF of the input is a silence of the line, every other byte itself.
#include "simulator/command_frames.h"
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

/// Takes what comes between two silences. @return the frames of the requests in it
static std::string takeBurst(RequestParser& parser, const std::string& burst) {
    std::string requests;
    bool broken = false;
    const auto note = [&](const RequestParser::Result& result) {
        require(!result.command || !result.violation, "a byte completes a request or breaks one");
        requests += result.command ? frameOf(*result.command) : std::string();
        broken = broken || result.violation;
        require(parser.frame().size() <= RequestParser::kMaxCommand + 8, "a frame has a bounded size");
    };
    for (const char byte : burst)
        note(parser.take(static_cast<std::uint8_t>(byte)));
    note(parser.silence());
    require(broken != (burst == requests), "what is more or less than requests is reported, and nothing else");
    return requests;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    RequestParser parser;
    while (!input.empty())
        takeBurst(parser, input.upTo('\xFF'));
    require(takeBurst(parser, frameOf("0501")) == frameOf("0501"),
            "after a silence a good request is taken, whatever was before it");
    return 0;
}
