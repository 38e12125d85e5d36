#include "simulator/image.h"
#include "tests/simulator/files.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace units {
namespace {

/// Runs a shell script that has the program as $UNITS and works in a directory of its own; its exit status.
class Program : public ::testing::Test {
protected:
    Program() {
        std::string name = ::testing::TempDir() + "units_program_XXXXXX";
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("mkdtemp");
        directory_ = name;
    }
    ~Program() override { std::filesystem::remove_all(directory_); }

    int run(const std::string& script) const {
        const std::string command = "cd '" + directory_ + "'; UNITS='" UNITS_PROGRAM "'; " + script;
        const int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string text(const std::string& file) const { return test::textOf(directory_ + "/" + file); }

private:
    std::string directory_;
};

/// Starts the simulation with the arguments as $UNITS_PID and waits for its link "port".
std::string starting(const std::string& arguments) {
    return "$UNITS --link port " + arguments +
           " >out 2>err & UNITS_PID=$!; "
           "for i in $(seq 200); do [ -e port ] && break; sleep 0.02; done; ";
}

bool haveLrzsz() { return std::system("command -v sx >/dev/null && command -v rx >/dev/null") == 0; }

TEST_F(Program, MakesImages) {
    ASSERT_EQ(run("$UNITS --make-image image --type-key SV-AMP --version 12504 --seed 7"), 0);
    const std::string image = text("image");
    EXPECT_EQ(Bytes(image.begin(), image.end()), makeImage("SV-AMP", 12504, 7));
    EXPECT_EQ(run("$UNITS --make-image /nonexistent/image 2>/dev/null"), 2);
}

TEST_F(Program, ExplainsItself) {
    EXPECT_EQ(run("$UNITS --help >out"), 0);
    EXPECT_NE(text("out").find("--answer-latency MS"), std::string::npos);
    EXPECT_NE(text("out").find("unplugafter"), std::string::npos);
    EXPECT_EQ(run("$UNITS --nonsense 2>err"), 2);
    EXPECT_NE(text("err").find("--nonsense"), std::string::npos);
}

TEST_F(Program, ItsExitStatusTellsWhetherTheClientWasFaultless) {
    EXPECT_EQ(run(starting("") + "kill $UNITS_PID; wait $UNITS_PID"), 0);
    EXPECT_NE(text("out").find("port: /dev/pts/"), std::string::npos);
    EXPECT_EQ(run(starting("--fault lost@0501 --journal log") +
                  "printf U >port; for i in $(seq 200); do grep -q VIOLATION log && break; sleep 0.02; done; "
                  "kill -INT $UNITS_PID; wait $UNITS_PID"),
              1);
    EXPECT_NE(text("err").find("VIOLATION: byte outside a request: 55"), std::string::npos);
    EXPECT_NE(text("err").find("fault that did not happen: lost@0501"), std::string::npos);
    EXPECT_EQ(run("[ -e port ]"), 1);
}

TEST_F(Program, ReceivesFromAnotherSender) {
    if (!haveLrzsz())
        GTEST_SKIP() << "lrzsz is not installed";
    ASSERT_EQ(run("$UNITS --make-image image --type-key K; $UNITS --make-image other --type-key L"), 0);
    for (const char* faults : {"", "--fault 'nak@packet5*3' --fault nak@eot", "--amplifier-check sum"}) {
        EXPECT_EQ(run(starting(std::string("--receive-only --expect image ") + faults) +
                      "sx -q image <port >port 2>/dev/null && wait $UNITS_PID"),
                  0)
            << faults << text("err");
        EXPECT_NE(text("out").find("received: 245760 bytes in "), std::string::npos);
        EXPECT_EQ(text("err"), "");
    }
    EXPECT_EQ(run(starting("--receive-only --expect other") + "sx -q image <port >port 2>/dev/null; wait $UNITS_PID"),
              1);
    EXPECT_EQ(text("err"), "the image is not the expected one\n");
}

TEST_F(Program, RefusesPacketsOfAnotherSize) {
    if (!haveLrzsz())
        GTEST_SKIP() << "lrzsz is not installed";
    ASSERT_EQ(run("$UNITS --make-image image --type-key K"), 0);
    EXPECT_EQ(run(starting("--receive-only") +
                  "sx -q -k image <port >port 2>/dev/null & SX=$!; "
                  "for i in $(seq 200); do grep -q VIOLATION err && break; sleep 0.02; done; "
                  "kill -9 $SX; kill $UNITS_PID; wait $UNITS_PID"),
              1);
    EXPECT_NE(text("err").find("VIOLATION: byte between packets: 02"), std::string::npos);
}

}  // namespace
}  // namespace units
