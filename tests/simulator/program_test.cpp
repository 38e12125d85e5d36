#include "simulator/image.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace units::test {

/// Runs shell scripts that have the program as $UNITS, in a directory of their own.
class Program : public ::testing::Test {
protected:
    Program() { std::filesystem::create_directory(directory_); }
    ~Program() override { std::filesystem::remove_all(directory_); }

    /// The exit status of a script.
    int run(const std::string& script) const {
        const std::string command = "cd '" + directory_ + "'; UNITS='" UNITS_PROGRAM "'; " + script;
        const int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string text(const std::string& file) const {
        std::ostringstream text;
        text << std::ifstream(directory_ + "/" + file).rdbuf();
        return text.str();
    }

private:
    const std::string directory_ = ::testing::TempDir() + "units_program_" + std::to_string(getpid());
};

/// Starts the simulation with the arguments as $UNITS_PID and waits for its link "port".
static std::string starting(const std::string& arguments) {
    return "$UNITS --link port " + arguments +
           " >out 2>err & UNITS_PID=$!; for i in $(seq 200); do [ -e port ] && break; sleep 0.02; done; ";
}

const std::string kUntilViolation = "for i in $(seq 200); do grep -q VIOLATION err && break; sleep 0.02; done; ";

TEST_F(Program, MakesImages) {
    ASSERT_EQ(run("$UNITS --make-image image --type-key SV-AMP --version 12504 --seed 7"), 0);
    const std::string image = text("image");
    ASSERT_EQ(image.size(), 245760U);
    EXPECT_EQ(image.substr(0x3BF05, 2), "\xD8\x30");
    EXPECT_EQ(image.substr(0x3BF10, 7), std::string("SV-AMP\0", 7));
    EXPECT_EQ(Bytes(image.begin(), image.end()), makeImage("SV-AMP", 12504, 7));
}

TEST_F(Program, RefusesNonsense) {
    for (const char* arguments :
         {"--nonsense", "stray", "--rate", "--rate fast", "--rate -1", "--sensors 100", "--upload-blocks 0",
          "--upload-blocks 1921", "--line-state odd", "--fault nak@x", "--kind 256", "--amplifier-check ''",
          "--expect file", "--model 12345678901234567", "--status 1", "--firmware-amplifier /nonexistent",
          "--firmware-amplifier file", "--link file", "--make-image /nonexistent/image"}) {
        EXPECT_EQ(run("echo >file; timeout 5 $UNITS " + std::string(arguments) + " >out 2>err"), 2) << arguments;
        EXPECT_TRUE(text("err").starts_with("dravolt-units: ")) << arguments;
    }
}

TEST_F(Program, ItsExitStatusTellsWhetherTheClientWasFaultless) {
    EXPECT_EQ(run(starting("") + "kill $UNITS_PID; wait $UNITS_PID"), 0);
    EXPECT_TRUE(text("out").starts_with("port: /dev/pts/"));
    EXPECT_EQ(run(starting("--fault lost@0501 --journal log") + "printf U >port; " + kUntilViolation +
                  "kill -INT $UNITS_PID; wait $UNITS_PID"),
              1);
    EXPECT_NE(text("log").find("VIOLATION: byte outside a request: 55"), std::string::npos);
    EXPECT_NE(text("err").find("fault that did not happen: lost@0501"), std::string::npos);
    EXPECT_EQ(run("[ -h port ]"), 1) << "the link goes with the port";
}

TEST_F(Program, ReceivesFromAnotherSenderAndRefusesPacketsOfAnotherSize) {
    if (run("command -v sx >out") != 0)
        GTEST_SKIP() << "lrzsz is not installed";
    ASSERT_EQ(run("$UNITS --make-image image --type-key K; $UNITS --make-image other --type-key L"), 0);
    const std::string send = "sx -q image <port >port 2>/dev/null; wait $UNITS_PID";
    for (const char* options : {"", "--fault 'nak@packet5*3' --fault nak@eot", "--amplifier-check sum"}) {
        EXPECT_EQ(run(starting(std::string("--receive-only --save-amplifier held --expect image ") + options) + send),
                  0)
            << options << text("err");
        EXPECT_NE(text("out").find("received: 245760 bytes in "), std::string::npos);
        EXPECT_EQ(text("held"), text("image"));
    }
    EXPECT_EQ(run(starting("--receive-only --expect other") + send), 1);
    EXPECT_EQ(text("err"), "the image is not the expected one\n");
    EXPECT_EQ(run(starting("--receive-only") + "sx -q -k image <port >port 2>/dev/null & SX=$!; " + kUntilViolation +
                  "kill -9 $SX; kill $UNITS_PID; wait $UNITS_PID"),
              1);
    EXPECT_NE(text("err").find("VIOLATION: byte between packets: 02"), std::string::npos);
}

}  // namespace units::test
