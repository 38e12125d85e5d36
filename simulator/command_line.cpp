#include "simulator/command_line.h"

#include "simulator/bytes.h"
#include "simulator/fault.h"
#include "simulator/image.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace units {

namespace {

struct OptionInfo {
    std::string_view name;
    std::string_view value;  ///< empty: a switch
    std::string_view help;
    void (*apply)(CommandLine& line, const std::string& value);
};

template <typename Number>
Number number(const std::string& text, Number least, Number most) {
    const bool isHex = text.starts_with("0x");
    const char* end = text.data() + text.size();
    Number result{};
    const auto [stop, error] = std::from_chars(text.data() + (isHex ? 2 : 0), end, result, isHex ? 16 : 10);
    if (error != std::errc{} || stop != end || result < least || result > most)
        throw std::invalid_argument("'" + text + "' is not a number from " + std::to_string(least) + " to " +
                                    std::to_string(most));
    return result;
}

template <typename Number>
Number number(const std::string& text) {
    return number<Number>(text, 0, std::numeric_limits<Number>::max());
}

CheckMode checkMode(const std::string& text) {
    if (text != "crc" && text != "sum")
        throw std::invalid_argument("'" + text + "' is not crc or sum");
    return text == "crc" ? CheckMode::crc : CheckMode::sum;
}

LineState lineState(const std::string& text) {
    if (text == "raw")
        return LineState::raw;
    if (text == "fresh")
        return LineState::fresh;
    if (text == "hostile")
        return LineState::hostile;
    throw std::invalid_argument("'" + text + "' is not raw, fresh or hostile");
}

template <std::string Options::*member>
void text(CommandLine& line, const std::string& value) {
    line.options.*member = value;
}

constexpr OptionInfo kOptions[] = {
    {"--help", "", "shows this help",
     [](CommandLine& line, const std::string&) { line.task = CommandLine::Task::help; }},

    {"--model", "NAME", "model name of the interface unit, up to 16 characters (SV-IFU16)", text<&Options::model>},
    {"--status", "XX", "status of the interface unit; 01: faulty connection (00)", text<&Options::status>},
    {"--sensors", "N", "number of connected sensor amplifiers (1)",
     [](CommandLine& line, const std::string& value) { line.options.sensors = number<unsigned>(value, 0, 99); }},
    {"--kind", "N", "kind of the amplifier (0x0A)",
     [](CommandLine& line, const std::string& value) { line.options.kind = number<std::uint8_t>(value); }},

    {"--firmware-amplifier", "FILE", "initial image of the amplifier",
     [](CommandLine& line, const std::string& value) { line.options.amplifierFirmware = loadImage(value); }},
    {"--firmware-interface", "FILE", "initial image of the interface unit",
     [](CommandLine& line, const std::string& value) { line.options.interfaceFirmware = loadImage(value); }},
    {"--save-amplifier", "FILE", "file that is kept equal to the amplifier's image", text<&Options::saveAmplifier>},
    {"--save-interface", "FILE", "file that is kept equal to the interface unit's image",
     text<&Options::saveInterface>},
    {"--amplifier-check", "MODE", "packets to the amplifier are checked by crc or sum (crc)",
     [](CommandLine& line, const std::string& value) { line.options.amplifierCheck = checkMode(value); }},
    {"--interface-check", "MODE", "packets to the interface unit are checked by crc or sum (sum)",
     [](CommandLine& line, const std::string& value) { line.options.interfaceCheck = checkMode(value); }},
    {"--upload-blocks", "N", "blocks of an image that an upload sends (1920)",
     [](CommandLine& line, const std::string& value) {
         line.options.uploadBlocks = number<unsigned>(value, 1, kImageBlocks);
     }},

    {"--rate", "BITS", "paces the line like a UART, ten bits per byte; 0: unlimited (0)",
     [](CommandLine& line, const std::string& value) { line.options.rate = number<unsigned>(value, 0, 10000000); }},
    {"--answer-latency", "MS", "delays every answer by this many milliseconds (0)",
     [](CommandLine& line, const std::string& value) {
         line.options.answerLatency = std::chrono::milliseconds(number<unsigned>(value));
     }},
    {"--line-state", "STATE", "settings of the port before it is opened: raw, fresh or hostile (raw)",
     [](CommandLine& line, const std::string& value) { line.options.lineState = lineState(value); }},
    {"--expect-speed", "BITS", "checks that the client has set the port to this speed, 8N1, raw; 0: no check (0)",
     [](CommandLine& line, const std::string& value) { line.options.expectSpeed = number<unsigned>(value); }},
    {"--link", "PATH", "symbolic link to the port; replaces only another link, removed at the end",
     text<&Options::link>},

    {"--fault", "FAULT", "fault to simulate, see below; may be repeated",
     [](CommandLine& line, const std::string& value) {
         parseFault(value);
         line.options.faults.push_back(value);
     }},
    {"--journal", "FILE", "log of what happens", text<&Options::journal>},

    {"--receiver", "COMMAND", "shell command that takes downloads in place of the unit", text<&Options::receiver>},
    {"--sender", "COMMAND", "shell command that sends uploads in place of the unit", text<&Options::sender>},
    {"--receive-only", "", "one download to the amplifier, without commands",
     [](CommandLine& line, const std::string&) { line.options.receiveOnly = true; }},
    {"--expect", "FILE", "with --receive-only: the image must equal this one",
     [](CommandLine& line, const std::string& value) { line.expect = value; }},

    {"--make-image", "FILE", "writes a sample image and exits",
     [](CommandLine& line, const std::string& value) {
         line.task = CommandLine::Task::makeImage;
         line.imageFile = value;
     }},
    {"--type-key", "KEY", "type key of the sample image, up to 16 characters",
     [](CommandLine& line, const std::string& value) { line.typeKey = value; }},
    {"--version", "N", "version word of the sample image (1000)",
     [](CommandLine& line, const std::string& value) { line.version = number<std::uint16_t>(value); }},
    {"--seed", "N", "content of the sample image (1)",
     [](CommandLine& line, const std::string& value) { line.seed = number<std::uint32_t>(value); }},
};

const OptionInfo& optionNamed(const std::string& name) {
    const auto found = std::find_if(std::begin(kOptions), std::end(kOptions),
                                    [&name](const OptionInfo& option) { return option.name == name; });
    if (found == std::end(kOptions))
        throw std::invalid_argument("unknown option " + name);
    return *found;
}

}  // namespace

CommandLine parseCommandLine(std::span<const std::string> arguments) {
    CommandLine line;
    while (!arguments.empty()) {
        const OptionInfo& option = optionNamed(arguments.front());
        arguments = arguments.subspan(1);
        if (option.value.empty()) {
            option.apply(line, {});
            continue;
        }
        if (arguments.empty())
            throw std::invalid_argument(std::string(option.name) + " needs " + std::string(option.value));
        option.apply(line, arguments.front());
        arguments = arguments.subspan(1);
    }
    if (!line.expect.empty() && !line.options.receiveOnly)
        throw std::invalid_argument("--expect needs --receive-only");
    return line;
}

std::string commandLineHelp() {
    std::string text =
        "dravolt-units [OPTION]...\n\n"
        "Acts as an interface unit with a sensor amplifier on a pseudo-terminal until SIGINT, SIGTERM or SIGHUP.\n"
        "Exit status: 0 the client made no error, 1 it did, 2 the options or files are wrong.\n\n"
        "Options:\n";
    for (const OptionInfo& option : kOptions) {
        std::string name = std::string(option.name) + " " + std::string(option.value);
        name.resize(std::max<std::size_t>(name.size(), 28), ' ');
        text += "  " + name + std::string(option.help) + "\n";
    }
    return text + "\n" + faultHelp();
}

}  // namespace units
