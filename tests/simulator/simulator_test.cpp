#include "simulator/simulator.h"

#include "simulator/control_bytes.h"
#include "tests/simulator/client.h"
#include "tests/simulator/files.h"
#include "tests/simulator/frames.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

namespace units {
namespace {

using namespace std::chrono_literals;
using test::Client;

constexpr const char* kOpen = "300550010000";
constexpr const char* kDownload = "300551010C00";
constexpr const char* kUpload = "300552010C00";
constexpr const char* kFinish = "300553010000";
constexpr const char* kEndTransfer = "300554010000";
constexpr const char* kDone = "0030050000";

Options withFaults(const std::vector<std::string>& faults) {
    Options options;
    options.faults = faults;
    return options;
}

void expectClosing(Client& client) {
    EXPECT_EQ(client.ask(kEndTransfer), kDone);
    EXPECT_EQ(client.ask(kFinish), kDone);
}

TEST(Simulator, TakesADownloadAndShowsTheNewVersion) {
    Simulator simulator(withFaults({"nak@packet5*9"}));
    Client client(simulator.port());
    const Bytes image = makeImage("SV-AMP", 12504, 9);
    EXPECT_EQ(client.ask("0101D40001000001"), "0001010000000030D4");
    EXPECT_EQ(client.ask(kOpen), kDone);
    EXPECT_EQ(client.ask(kDownload), kDone);
    EXPECT_EQ(client.read(1), Bytes{kCrcStart});
    EXPECT_EQ(client.download(image, CheckMode::crc), 1929U);
    expectClosing(client);
    EXPECT_EQ(client.ask("0101D40001000001"), "0001010000000030D8");
    EXPECT_TRUE(simulator.waitIdle(10s));
    EXPECT_EQ(simulator.firmware(Unit::amplifier), image);
    EXPECT_EQ(simulator.downloads(), 1U);
    EXPECT_EQ(simulator.requests(), (std::vector<std::string>{"0101D40001000001", kOpen, kDownload, kEndTransfer,
                                                              kFinish, "0101D40001000001"}));
    EXPECT_TRUE(simulator.violations().empty()) << simulator.violations().front();
    EXPECT_TRUE(simulator.unusedFaults().empty());
}

TEST(Simulator, SendsAnUpload) {
    Options options;
    options.uploadBlocks = 3;
    Simulator simulator(options);
    Client client(simulator.port());
    EXPECT_EQ(client.ask(kUpload), kDone);
    client.write(Bytes{kNak});
    Bytes received;
    for (unsigned number = 1; number <= 3; ++number) {
        const Bytes block = client.read(132);
        ASSERT_EQ(block.size(), 132U);
        received.insert(received.end(), block.begin() + 3, block.end() - 1);
        client.write(Bytes{kAck});
    }
    EXPECT_EQ(client.read(1), Bytes{kEot});
    client.write(Bytes{kNak});
    EXPECT_EQ(client.read(1), Bytes{kEot});
    client.write(Bytes{kAck});
    expectClosing(client);
    const Bytes firmware = simulator.firmware(Unit::amplifier);
    EXPECT_EQ(received, Bytes(firmware.begin(), firmware.begin() + 384));
    EXPECT_TRUE(simulator.violations().empty());
}

TEST(Simulator, ACancelledDownloadLeavesTheOldFirmware) {
    Simulator simulator;
    Client client(simulator.port());
    const Bytes before = simulator.firmware(Unit::amplifier);
    client.ask(kOpen);
    client.ask(kDownload);
    client.read(1);
    client.write(test::packetOf(before, 1, CheckMode::crc));
    EXPECT_EQ(client.read(1), Bytes{kAck});
    client.write(Bytes(10, kCan));
    expectClosing(client);
    EXPECT_EQ(simulator.firmware(Unit::amplifier), before);
    EXPECT_EQ(simulator.downloads(), 0U);
    EXPECT_TRUE(simulator.violations().empty());
}

TEST(Simulator, HearsNothingBeforeItsAnswerIsComplete) {
    Simulator simulator;
    Client client(simulator.port());
    Bytes two = test::requestFrame("0601");
    two.insert(two.end(), two.begin(), two.begin() + static_cast<std::ptrdiff_t>(two.size()));
    client.write(two);
    EXPECT_EQ(client.read(21).size(), 21U);
    EXPECT_TRUE(client.read(1, 100ms).empty());
    EXPECT_EQ(simulator.requests().size(), 1U);
    ASSERT_EQ(simulator.violations().size(), 1U);
    EXPECT_NE(simulator.violations()[0].find("12 bytes before the answer was complete"), std::string::npos);
}

TEST(Simulator, ALateAnswerExcusesAnotherRequest) {
    Simulator simulator(withFaults({"delay:300@0501"}));
    Client client(simulator.port());
    EXPECT_EQ(client.ask("0501", 50ms), "");
    client.write(test::requestFrame("0601"));
    EXPECT_EQ(client.read(39 + 21).size(), 60U);
    EXPECT_TRUE(simulator.violations().empty());
}

TEST(Simulator, HangsUpWhereAskedTo) {
    struct Case {
        const char* fault;
        std::size_t received;
    };
    for (const Case& expected : {Case{"unplug@0601", 0}, Case{"unplugin@0601", 10}, Case{"unplugafter@0601", 21}}) {
        Simulator simulator(withFaults({expected.fault}));
        Client client(simulator.port());
        client.write(test::requestFrame("0601"));
        EXPECT_EQ(client.read(21).size(), expected.received) << expected.fault;
        EXPECT_TRUE(client.hungUp()) << expected.fault;
        EXPECT_TRUE(simulator.waitIdle(10s));
    }
    Simulator simulator(withFaults({"unplugin@packet2"}));
    Client client(simulator.port());
    const Bytes image = makeImage("", 1, 1);
    client.ask(kOpen);
    client.ask(kDownload);
    client.read(1);
    client.write(test::packetOf(image, 1, CheckMode::crc));
    client.read(1);
    const Bytes second = test::packetOf(image, 2, CheckMode::crc);
    client.write(std::span(second).first(66));
    EXPECT_TRUE(client.hungUp());
}

TEST(Simulator, HangsUpOnDemand) {
    Options options;
    options.link = ::testing::TempDir() + "units_unplug_" + std::to_string(getpid());
    Simulator simulator(options);
    Client client(simulator.port());
    simulator.unplug();
    EXPECT_TRUE(client.hungUp());
    EXPECT_NE(access(options.link.c_str(), F_OK), 0);
    EXPECT_THROW(Client(simulator.port()), std::system_error);
}

TEST(Simulator, GoesMute) {
    Simulator simulator(withFaults({"mute@0601#2"}));
    Client client(simulator.port());
    EXPECT_EQ(client.ask("0601"), "00060100000001");
    EXPECT_EQ(client.ask("0601", 50ms), "");
    EXPECT_EQ(client.ask("0501", 50ms), "");
    EXPECT_EQ(simulator.requests().size(), 2U);
    EXPECT_FALSE(client.read(1, 10ms).size() > 0);
}

TEST(Simulator, FloodsAClientThatDoesNotRead) {
    Simulator simulator(withFaults({"flood:200@0601"}));
    Client client(simulator.port());
    client.write(test::requestFrame("0601"));
    EXPECT_TRUE(simulator.waitFor("reply 0601", 10s));
    std::this_thread::sleep_for(400ms);  // longer than the flood: its rest must not follow
    const Bytes all = client.read(100000, 200ms);
    EXPECT_GT(all.size(), 1000U);
    EXPECT_EQ(all.back(), 0x05);
    EXPECT_EQ(client.ask("0601"), "00060100000001");
}

TEST(Simulator, TakesItsTimeOnALineWithARate) {
    Options options;
    options.rate = 9600;
    options.answerLatency = 20ms;
    Simulator simulator(options);
    Client client(simulator.port());
    const auto start = std::chrono::steady_clock::now();
    for (int round = 0; round < 5; ++round)
        EXPECT_EQ(client.ask("0601"), "00060100000001");
    const auto duration = std::chrono::steady_clock::now() - start;
    const auto least = 5 * (std::chrono::microseconds((12 + 21) * 10000000LL / 9600) + 20ms);
    EXPECT_GE(duration, 5 * (std::chrono::microseconds(21 * 10000000LL / 9600) + 20ms));
    EXPECT_LT(duration, least + 1s);
}

TEST(Simulator, APacedLineStillHearsTheClientThatDoesNotWait) {
    Options options;
    options.rate = 115200;
    Simulator simulator(options);
    Client client(simulator.port());
    client.write(Bytes(1000, 0x02));
    client.write(test::requestFrame("0601"));
    EXPECT_TRUE(simulator.waitFor("VIOLATION", 10s));
    EXPECT_TRUE(simulator.waitIdle(10s));
}

TEST(Simulator, StartsWithAHostilePort) {
    Options options;
    options.lineState = LineState::hostile;
    options.stale = bytesOf("old");
    options.expectSpeed = 38400;
    Simulator simulator(options);
    const int port = open(simulator.port().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(port, 0);
    termios settings{};
    ASSERT_EQ(tcgetattr(port, &settings), 0);
    EXPECT_NE(settings.c_lflag & ECHO, 0U);
    EXPECT_NE(settings.c_lflag & ICANON, 0U);
    EXPECT_NE(settings.c_cflag & CSTOPB, 0U);
    EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B9600));
    close(port);
    {
        Client client(simulator.port());
        EXPECT_EQ(client.read(3), bytesOf("old"));
        EXPECT_EQ(client.ask("0601"), "00060100000001");
    }
    EXPECT_TRUE(simulator.violations().empty());
    Client reopened(simulator.port());
    EXPECT_EQ(reopened.ask("0601"), "00060100000001");
}

TEST(Simulator, ALinkReplacesNoFile) {
    const std::string path = ::testing::TempDir() + "units_file_" + std::to_string(getpid());
    saveImage(path, Bytes(1));
    Options options;
    options.link = path;
    EXPECT_THROW(Simulator{options}, std::system_error);
    EXPECT_EQ(test::textOf(path).size(), 1U);
    std::remove(path.c_str());
}

TEST(Simulator, NoticesAPortThatTheClientDidNotSet) {
    Options options;
    options.lineState = LineState::fresh;
    options.expectSpeed = 38400;
    Simulator simulator(options);
    const int port = open(simulator.port().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(port, 0);
    const Bytes frame = test::requestFrame("0601");
    EXPECT_EQ(write(port, frame.data(), frame.size()), static_cast<ssize_t>(frame.size()));
    EXPECT_TRUE(simulator.waitFor("VIOLATION: port not raw", 10s));
    close(port);
}

TEST(Simulator, KeepsFilesAndLink) {
    const std::string base = ::testing::TempDir() + "units_simulator_test_" + std::to_string(getpid());
    Options options;
    options.link = base + ".port";
    options.journal = base + ".journal";
    options.saveInterface = base + ".image";
    options.interfaceFirmware = makeImage("SV-IFU", 1010, 1);
    {
        Simulator simulator(options);
        Client client(options.link);
        EXPECT_EQ(client.ask("0501"), "0005010000SV-IFU16        V1.010");
        EXPECT_EQ(loadImage(options.saveInterface), options.interfaceFirmware);
        client.ask("300550000000");
        client.ask("300551000C00");
        EXPECT_EQ(client.read(1), Bytes{kNak});
        client.download(makeImage("SV-IFU", 1011, 2), CheckMode::sum);
        EXPECT_EQ(client.ask("0501"), "0005010000SV-IFU16        V1.011");
        EXPECT_EQ(loadImage(options.saveInterface), makeImage("SV-IFU", 1011, 2));
    }
    EXPECT_NE(access(options.link.c_str(), F_OK), 0);
    const std::string text = test::textOf(options.journal);
    EXPECT_NE(text.find("request 0501  [02 30 30 30 30 30 30 35 30 31 03 37]"), std::string::npos);
    EXPECT_NE(text.find("packet 300 (number 44), 132 bytes, ok -> ACK"), std::string::npos);
    std::remove(options.journal.c_str());
    std::remove(options.saveInterface.c_str());
}

TEST(Simulator, LetsAProgramTakeTheTransfer) {
    const std::string file = ::testing::TempDir() + "units_peer_" + std::to_string(getpid());
    Options options;
    options.receiver = "head -c 5 >" + file + "; printf done";
    options.sender = "exec cat";
    Simulator simulator(options);
    Client client(simulator.port());
    client.ask(kOpen);
    client.ask(kDownload);
    client.write(bytesOf("12345"));
    EXPECT_EQ(client.read(4), bytesOf("done"));
    EXPECT_TRUE(simulator.waitFor("peer exited with status 0, took 5 bytes, sent 4", 10s));
    expectClosing(client);
    EXPECT_EQ(test::textOf(file), "12345");
    std::remove(file.c_str());

    client.ask(kUpload);
    client.write(bytesOf("echo"));
    EXPECT_EQ(client.read(4), bytesOf("echo"));
    simulator.stop();
    EXPECT_TRUE(simulator.violations().empty());
}

}  // namespace
}  // namespace units
