#include "ports/access.h"
#include "ports/command_line.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace ports::test {

/// A computer with a port, another in name only, and an adapter with two: ttyUSB10 has a driver and a pseudo-terminal.
class Ports : public ::testing::Test {
protected:
    Ports() {
        ::setenv("LC_ALL", "C", 1);
        EXPECT_EQ(::unlockpt(master_), 0);
        terminal = ::ptsname(master_);
        fs::create_directories(computer.folder);
        shell("terminal=" + terminal + R"(
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
        ::close(master_);
        fs::remove_all(root);
    }

    /// Runs a script in the root of the computer. In it, `device NAME FOLDER [TYPE]` makes a serial device.
    void shell(const std::string& script) const {
        const std::string prelude = "set -e; cd " + root.string() + R"(
            device() {
                mkdir -p $2 sys/class/tty/$1 dev/serial/by-id dev/serial/by-path
                ln -s $PWD/$2 sys/class/tty/$1/device
                echo $3 >sys/class/tty/$1/type
                touch dev/$1
            }
)";
        ASSERT_EQ(std::system((prelude + script).c_str()), 0);
    }

    /// The text with its paths relative to the computer's root.
    std::string shown(std::string text) const {
        for (auto at = text.find(root.string()); at != std::string::npos; at = text.find(root.string()))
            text.erase(at, root.string().size());
        return text;
    }

    /// Runs the command; gives its first sentence, its exit status and the target of COM3. `output` has all of it.
    std::string run(const std::vector<std::string>& arguments) {
        std::ostringstream out;
        Output screen(out);
        const int status = ports::run(computer, arguments, screen, screen);
        output = shown(out.str());
        std::error_code none;
        const fs::path own = computer.folder / "ports/com3";
        const fs::path com3 = fs::read_symlink(fs::is_symlink(own) ? own : computer.folder / "com3", none);
        const std::string sentence = output.substr(0, std::min(output.find(". "), output.find('\n')));
        return sentence + " | " + std::to_string(status) + " | " + shown(com3);
    }

    bool says(const std::string& text) const { return output.find(text) != std::string::npos; }

    const fs::path root = fs::path(::testing::TempDir()) / ("ports_" + std::to_string(::getpid()));
    const Computer computer{root, root / "programs"};
    const std::string stable = "/dev/serial/by-id/usb-FTDI-A5";
    std::string terminal;
    std::string output;

private:
    const int master_ = ::posix_openpt(O_RDWR | O_NOCTTY);
};

TEST_F(Ports, AreListedWithUsersLinksAndProblems) {
    shell(R"(
        mkdir -p proc/4321 proc/17 proc/18 run/udev/data
        echo "1: FLOCK  ADVISORY  WRITE 4321 00:$(stat -Lc %D:%i dev/ttyUSB10) 0 EOF" >proc/locks
        echo minicom >proc/4321/comm; echo ModemManager >proc/17/comm; echo brltty >proc/18/comm
        echo E:ID_MM_PORT_IGNORE=1 >run/udev/data/c188:10
        ln -s $PWD/dev/serial/by-id/usb-FTDI-A5 programs/com2; ln -s $PWD/dev/ttyUSB7 programs/com16)");
    EXPECT_EQ(run({}), "/dev/ttyS0  COM1 without a link | 0 | ");
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
}

TEST_F(Ports, EscapeControlCharactersInNames) {
    const std::pair<std::string, std::string> cases[] = {
        // name, shown as; the last name is overlong, and beyond Unicode
        {"ポート–é😀", "ポート–é😀"},
        {"\x1b[2J\t\n\x7f", R"(\x1b[2J\x09\x0a\x7f)"},
        {"a\u202e\u200bb\u2066", R"(a\xe2\x80\xae\xe2\x80\x8bb\xe2\x81\xa6)"},
        {"\xc1\x81\xe0\x82\xa9\xf4\x90\x80\x80", R"(\xc1\x81\xe0\x82\xa9\xf4\x90\x80\x80)"}};
    for (const auto& [name, shown] : cases)
        EXPECT_EQ(run({"set", "3", name}), "dravolt-ports: /dev/" + shown + ": there is no such device | 1 | ");
}

TEST_F(Ports, AreLinkedByStableName) {
    shell("echo 'a file of the user' >programs/com4; mkdir -p programs/com3.new/in.the.way");
    EXPECT_EQ(run({"remove", "3"}), "dravolt-ports: COM3 has no link | 1 | ");
    EXPECT_EQ(run({"set", "3", "ttyUSB9"}), "COM3 is now /dev/ttyUSB9 | 0 | /dev/ttyUSB9");
    EXPECT_EQ(run({"set", "3", terminal}), "COM3 is now " + stable + " | 0 | " + stable);
    EXPECT_EQ(run({"set", "3", "ttyUSB7"}), "dravolt-ports: /dev/ttyUSB7: there is no such device | 1 | " + stable);
    EXPECT_EQ(run({"set", "3", "/dev/null"}), "dravolt-ports: /dev/null is not a serial port | 1 | " + stable);
    const std::string notALink = "dravolt-ports: /programs/com4 is not a link; it is left unchanged | 1 | " + stable;
    EXPECT_EQ(run({"set", "4", "ttyUSB9"}), notALink);
    EXPECT_EQ(run({"remove", "4"}), notALink);
    EXPECT_EQ(run({"set", "17", "ttyS0"}), "dravolt-ports: wrong arguments; see dravolt-ports --help | 2 | " + stable);
    EXPECT_EQ(run({"remove", "3"}), "COM3 no longer has a link. | 0 | ");
}

TEST_F(Ports, AreLinkedBySocketWhereNamesAreNotUnique) {
    shell(R"(
        for n in 1 2; do
            device ttyUSB$n sys/devices/usb2/2-$n/tty
            echo 1a86 >sys/devices/usb2/2-$n/idVendor
            for bus in usb usbv2; do ln -s ../../ttyUSB$n dev/serial/by-path/pci-0-$bus-0:$n:1.0-port0; done
        done
        ln -s ../../ttyUSB2 dev/serial/by-id/usb-1a86-if00-port0)");
    const std::string identity = "/dev/serial/by-id/usb-1a86-if00-port0";
    const std::string place = "/dev/serial/by-path/pci-0-usb-0:2:1.0-port0";
    const std::array<std::string, 3> cases[] = {
        // serial number of the adapter, of another of its kind, link
        {"A6", "A5", identity}, {"A6", "", identity},    {"", "", place},       {"", "A5", place},
        {"  ", "A5", place},    {"0001", "0001", place}, {"A,6", "A,5", place},
    };
    for (const auto& [own, other, link] : cases) {
        SCOPED_TRACE("'" + own + "' beside '" + other + "'");
        shell("echo '" + other + "' >sys/devices/usb2/2-1/serial; echo '" + own + "' >sys/devices/usb2/2-2/serial");
        for (const std::string& device : {std::string("ttyUSB2"), root.string() + identity}) {
            EXPECT_EQ(run({"set", "3", device}), "COM3 is now " + link + " | 0 | " + link);
            EXPECT_EQ(says("no serial number of its own"), link == place) << output;
        }
        run({});
        EXPECT_TRUE(says("stable name " + link + (link == place ? ", by socket" : "\n"))) << output;
    }
}

}  // namespace ports::test
