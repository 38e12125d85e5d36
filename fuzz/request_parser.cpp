/// The simulator's request parser. A byte 0xFF of the input is a silence of the line, every other byte itself.
#include "simulator/command_frames.h"
#include "support/input.h"
#include "support/require.h"
#include "tests/simulator/frames.h"

using units::Bytes;
using units::RequestParser;
using units::test::requestFrame;

/// Takes what comes between two silences. @return the frames of the requests in it
static Bytes takeBurst(RequestParser& parser, const Bytes& burst) {
    Bytes requests;
    bool broken = false;
    const auto note = [&](const RequestParser::Result& result) {
        require(!result.command || !result.violation, "a byte completes a request or breaks one");
        const Bytes frame = result.command ? requestFrame(*result.command) : Bytes();
        requests.insert(requests.end(), frame.begin(), frame.end());
        broken = broken || result.violation;
        require(parser.frame().size() <= RequestParser::kMaxCommand + 8, "a frame has a bounded size");
    };
    for (const std::uint8_t byte : burst)
        note(parser.take(byte));
    note(parser.silence());
    require(broken != (burst == requests), "what is more or less than requests is reported, and nothing else");
    return requests;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    RequestParser parser;
    while (!input.empty())
        takeBurst(parser, units::bytesOf(input.upTo('\xFF')));
    require(!takeBurst(parser, requestFrame("0501")).empty(), "after a silence a good request is taken");
    return 0;
}
