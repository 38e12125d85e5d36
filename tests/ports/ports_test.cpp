#include "ports/access.h"
#include "ports/command_line.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <pty.h>
#include <regex>
#include <sstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace ports::test {

/// A machine with a built-in port, one that exists in name only, and an adapter with two ports: the second, ttyUSB10,
/// has a driver, a stable name and a real pseudo-terminal behind it.
class Ports : public ::testing::Test {
protected:
    Ports() {
        ::setenv("LC_ALL", "C", 1);
        EXPECT_EQ(::openpty(&master_, &slave_, nullptr, nullptr, nullptr), 0);
        terminal = ::ttyname(slave_);
        fs::create_directories(machine.folder);
        shell("terminal=" + terminal + R"(
            device() {
                mkdir -p $2 sys/class/tty/$1 dev/serial/by-id
                ln -s $PWD/$2 sys/class/tty/$1/device
                echo $3 >sys/class/tty/$1/type
                touch dev/$1
            }
            board=sys/devices/00:05 usb=sys/devices/usb1/1-1
            device ttyS0 $board/00:05:0/00:05:0.0 4
            device ttyS1 $board/00:05:0/00:05:0.0 0
            device ttyUSB9 $usb/1-1:1.0
            device ttyUSB10 $usb/1-1:1.1/ttyUSB10
            ln -s /sys/bus/serial-base/drivers/port $board/00:05:0/00:05:0.0/driver
            ln -s /sys/bus/pnp/drivers/serial $board/driver
            ln -s /sys/bus/usb-serial/drivers/ftdi_sio $usb/1-1:1.1/ttyUSB10/driver
            echo FTDI >$usb/manufacturer; printf 'USB\033]0;UART\n' >$usb/product; echo A5 >$usb/serial
            echo 0403 >$usb/idVendor; echo 6001 >$usb/idProduct
            echo 188:10 >sys/class/tty/ttyUSB10/dev
            ln -sf $terminal dev/ttyUSB10
            ln -s $PWD/dev/ttyUSB10 dev/serial/by-id/usb-FTDI-A5)");
    }

    ~Ports() override {
        ::close(slave_);
        ::close(master_);
        fs::remove_all(root);
    }

    /// Runs a script in the root of the machine.
    void shell(const std::string& script) const {
        ASSERT_EQ(std::system(("cd " + root.string() + " && { " + script + "\n}").c_str()), 0);
    }

    /// Text without the machine's root in its paths.
    std::string shown(const std::string& text) const { return std::regex_replace(text, std::regex(root.string()), ""); }

    /// The exit status; what was written is in `output`.
    int run(const std::vector<std::string>& arguments) {
        std::ostringstream out;
        Output screen(out);
        const int status = ports::run(machine, arguments, screen, screen);
        output = shown(out.str());
        return status;
    }

    bool says(const std::string& text) const { return output.find(text) != std::string::npos; }

    struct Step {
        std::vector<std::string> arguments;
        int status;
        std::string said;
        std::string com3 = "";  ///< where the link of COM3 leads then; empty: there is none
    };

    void expect(const std::vector<Step>& steps) {
        for (const Step& step : steps) {
            EXPECT_EQ(run(step.arguments), step.status) << step.said;
            EXPECT_TRUE(says(step.said)) << step.said << " is not in\n" << output;
            std::error_code none;
            const fs::path own = machine.folder / "ports/com3";
            const fs::path link = fs::is_symlink(own) ? own : machine.folder / "com3";
            EXPECT_EQ(shown(fs::read_symlink(link, none)), step.com3) << step.said;
        }
    }

    const fs::path root = fs::path(::testing::TempDir()) / ("ports_" + std::to_string(::getpid()));
    const Machine machine{root, root / "programs"};
    const std::string stable = "/dev/serial/by-id/usb-FTDI-A5";
    std::string terminal;
    std::string output;

private:
    int master_ = -1;
    int slave_ = -1;
};

TEST_F(Ports, AreListedWithTheirUsersAndWhatMayDisturbThem) {
    shell(R"(
        mkdir -p proc/4321 proc/17 proc/18 run/udev/data
        echo "1: FLOCK  ADVISORY  WRITE 4321 00:$(stat -Lc %D:%i dev/ttyUSB10) 0 EOF" >proc/locks
        echo minicom >proc/4321/comm; echo ModemManager >proc/17/comm; echo brltty >proc/18/comm
        echo E:ID_MM_PORT_IGNORE=1 >run/udev/data/c188:10
        ln -s $PWD/dev/serial/by-id/usb-FTDI-A5 programs/com2; ln -s $PWD/dev/ttyUSB7 programs/com16)");
    EXPECT_EQ(run({}), 0);
    const std::string free = "\n    not in use, as far as user " + userName() + " can see\n    you may open it\n\n";
    EXPECT_EQ(output.substr(0, output.find(". Link it")),
              "/dev/ttyS0  COM1 without a link\n    serial port of this computer, driver serial" + free +
                  "/dev/ttyUSB9\n    FTDI USB\\x1b]0;UART [0403:6001], serial number A5" + free +
                  R"(/dev/ttyUSB10  COM2
    FTDI USB\x1b]0;UART [0403:6001], driver ftdi_sio, serial number A5
    stable name /dev/serial/by-id/usb-FTDI-A5
    in use by minicom (process 4321)
    you may open it

COM links in /programs:
    COM2 -> /dev/serial/by-id/usb-FTDI-A5
    COM16 -> /dev/ttyUSB7 (not plugged in)

What is missing:
  - ModemManager is running and may send modem commands to /dev/ttyUSB9)");
    ::setenv("LC_ALL", "ja_JP.UTF-8", 1);
    run({});
    EXPECT_TRUE(says("点字サービス brltty が動作しています")) << output;
    fs::remove_all(root / "sys/class/tty");
    EXPECT_EQ(run({}), 1) << "no serial device";
}

TEST_F(Ports, HaveTheirNamesShownAndNotSentToTheTerminal) {
    const std::pair<std::string, std::string> names[] = {
        {"ポート–é😀", "ポート–é😀"},
        {"\x1b[2J\t\n\x7f", R"(\x1b[2J\x09\x0a\x7f)"},
        {"\u009b2J\x9b", R"(\xc2\x9b2J\x9b)"},                                  // control characters beyond ASCII
        {"a\u202e\u200bb\u2066", R"(a\xe2\x80\xae\xe2\x80\x8bb\xe2\x81\xa6)"},  // right to left, no width
        {"\xc1\x81\xe0\x82\xa9\xf4\x90\x80\x80", R"(\xc1\x81\xe0\x82\xa9\xf4\x90\x80\x80)"},  // too long, too large
        {"\xe3\x83", R"(\xe3\x83)"},                                                          // cut short
    };
    for (const auto& [name, shown] : names)
        expect({{{"set", "3", name}, 1, "/dev/" + shown + ": there is no such device\n"}});
}

TEST_F(Ports, AreLinkedByTheirStableNames) {
    shell("echo 'a file of the user' >programs/com4; mkdir -p programs/com3.new/in.the.way");
    expect({
        {{"remove", "3"}, 1, "COM3 has no link"},
        {{"set", "3", "ttyUSB9"}, 0, "COM3 is now /dev/ttyUSB9.", "/dev/ttyUSB9"},
        {{"set", "3", terminal}, 0, "COM3 is now " + stable + ".", stable},
        {{"set", "3", "ttyUSB7"}, 1, "/dev/ttyUSB7: there is no such device", stable},
        {{"set", "3", "/dev/null"}, 1, "/dev/null is no serial port", stable},
        {{"set", "4", "ttyUSB9"}, 1, "/programs/com4 is no link", stable},
        {{"remove", "4"}, 1, "/programs/com4 is no link", stable},
        {{"set", "17", "ttyUSB9"}, 2, "wrong arguments", stable},
        {{"remove", "3"}, 0, "COM3 has no link any more."},
    });
}

TEST_F(Ports, AreLinkedInAFolderOfTheirOwn) {
    shell("mkdir programs/ports; ln -s $PWD/dev/ttyUSB9 programs/com3");
    expect({
        {{}, 0, "/ports:\n    COM3 -> /dev/ttyUSB9\n        link: /programs/com3\n", "/dev/ttyUSB9"},
        {{"set", "3", "ttyUSB10"}, 0, "COM3 is now " + stable, stable},
        {{}, 0, "/ports:\n    COM3 -> " + stable + "\n        /programs/com3 is not used\n", stable},
        {{}, 0, "/dev/ttyUSB10  COM3\n", stable},
        {{"remove", "3"}, 0, "COM3 has no link any more."},
    });
}

TEST_F(Ports, AreLinkedByTheirPlaceWhereAnotherAdapterCanHaveTheName) {
    shell(R"(
        mkdir -p dev/serial/by-path
        for n in 1 2; do
            mkdir -p sys/devices/usb2/2-$n/tty sys/class/tty/ttyUSB$n
            echo 1a86 >sys/devices/usb2/2-$n/idVendor
            ln -s $PWD/sys/devices/usb2/2-$n/tty sys/class/tty/ttyUSB$n/device
            touch dev/ttyUSB$n
            for bus in usb usbv2; do ln -s ../../ttyUSB$n dev/serial/by-path/pci-0-$bus-0:$n:1.0-port0; done
        done
        ln -s ../../ttyUSB2 dev/serial/by-id/usb-1a86-if00-port0)");
    const std::string identity = "/dev/serial/by-id/usb-1a86-if00-port0";
    const std::string place = "/dev/serial/by-path/pci-0-usb-0:2:1.0-port0";
    struct Case {
        std::string own;    ///< serial number of the adapter
        std::string other;  ///< of another one of its kind
        std::string link;
    };
    const Case cases[] = {
        {"A6", "A5", identity}, {"A6", "", identity},    {"", "", place},       {"", "A5", place},
        {"  ", "A5", place},    {"0001", "0001", place}, {"A,6", "A,5", place},
    };
    for (const auto& [own, other, link] : cases) {
        SCOPED_TRACE("'" + own + "' beside '" + other + "'");
        shell("echo '" + other + "' >sys/devices/usb2/2-1/serial; echo '" + own + "' >sys/devices/usb2/2-2/serial");
        expect({{{}, 0, "stable name " + link + (link == place ? ", of the place" : "\n")}});
        for (const std::string& device : {std::string("ttyUSB2"), root.string() + identity}) {
            expect({{{"set", "3", device}, 0, "COM3 is now " + link, link}});
            EXPECT_EQ(says("no serial number of its own"), link == place) << output;
        }
        run({"remove", "3"});
    }
}

}  // namespace ports::test
