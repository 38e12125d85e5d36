#include "ports/command_line.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <pty.h>
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
        fs::create_directories(machine.folder);
        EXPECT_EQ(::openpty(&master_, &slave_, nullptr, nullptr, nullptr), 0);
        shell("terminal=" + std::string(::ttyname(slave_)) + R"(
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

    /// The exit status; what was written is in `output`.
    int run(const std::vector<std::string>& arguments) {
        std::ostringstream out;
        Output terminal(out);
        const int status = ports::run(machine, arguments, terminal, terminal);
        output = out.str();
        return status;
    }

    bool says(const std::string& text) const { return output.find(text) != std::string::npos; }

    const fs::path root = fs::path(::testing::TempDir()) / ("ports_" + std::to_string(::getpid()));
    const Machine machine{root, root / "programs"};
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
    for (const char* text :
         {"/dev/ttyS0  COM1 without a link\n    serial port of this computer, driver serial\n",
          "/dev/ttyUSB9\n    FTDI USB\\x1b]0;UART [0403:6001], serial number A5\n    not in use",
          "/dev/ttyUSB10  COM2\n    FTDI USB\\x1b]0;UART [0403:6001], driver ftdi_sio, serial number A5\n",
          "in use by minicom (process 4321)\n    you may open it", "brltty is running",
          "/dev/ttyUSB7 (not plugged in)"})
        EXPECT_TRUE(says(text)) << text << " is not in\n" << output;
    const std::string commands = "may send modem commands to " + root.string() + "/dev/tty";
    EXPECT_TRUE(says(commands + "USB9") && !says(commands + "USB10") && !says(commands + "S0")) << output;
    EXPECT_FALSE(says("ttyS1"));
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
    for (const auto& [name, shown] : names) {
        EXPECT_EQ(run({"set", "1", name}), 1);
        EXPECT_TRUE(says("/" + shown + ": there is no such device\n")) << output;
    }
}

TEST_F(Ports, AreLinkedByTheirStableNames) {
    shell("echo 'a file of the user' >programs/com4; mkdir -p programs/com3.new/in.the.way");
    const std::string terminal = fs::read_symlink(root / "dev/ttyUSB10");
    const std::string other = root / "dev/ttyUSB9", stable = root / "dev/serial/by-id/usb-FTDI-A5";
    // arguments, exit status, and where the link of COM3 leads then (nowhere: it is not there)
    const std::tuple<std::vector<std::string>, int, std::string> steps[] = {
        {{"remove", "3"}, 1, ""},
        {{"set", "3", "ttyUSB9"}, 0, other},
        {{"set", "3", terminal}, 0, stable},
        {{"set", "3", "ttyUSB7"}, 1, stable},
        {{"set", "3", "/dev/null"}, 1, stable},
        {{"set", "4", "ttyUSB9"}, 1, stable},
        {{"remove", "4"}, 1, stable},
        {{"set", "17", "ttyUSB9"}, 2, stable},
        {{"remove", "3"}, 0, ""},
    };
    for (const auto& [arguments, status, com3] : steps) {
        EXPECT_EQ(run(arguments), status) << arguments[0] << ' ' << output;
        std::error_code none;
        EXPECT_EQ(fs::read_symlink(machine.folder / "com3", none), com3) << arguments[0] << ' ' << output;
    }
    EXPECT_TRUE(fs::is_regular_file(machine.folder / "com4"));
}

TEST_F(Ports, AreLinkedInAFolderOfTheirOwn) {
    shell("mkdir programs/ports; ln -s $PWD/dev/ttyUSB9 programs/com3");
    const fs::path beside = machine.folder / "com3", fresh = machine.folder / "ports/com3";
    run({});
    EXPECT_TRUE(says("ttyUSB9  COM3\n") &&
                says("    COM3 -> " + (root / "dev/ttyUSB9").string() + "\n        link: " + beside.string() + "\n"))
        << output;
    EXPECT_EQ(run({"set", "3", "ttyUSB10"}), 0);
    EXPECT_EQ(fs::read_symlink(fresh), root / "dev/serial/by-id/usb-FTDI-A5");
    run({});
    EXPECT_TRUE(says("ttyUSB10  COM3\n") && says(beside.string() + " is not used")) << output;
    EXPECT_EQ(run({"remove", "3"}), 0);
    EXPECT_FALSE(fs::is_symlink(fresh) || fs::is_symlink(beside)) << "a removed port has no other link";
}

TEST_F(Ports, AreLinkedByTheirPlaceWhereAnotherAdapterCanHaveTheName) {
    shell(R"(
        mkdir -p dev/serial/by-path
        for n in 1 2; do
            mkdir -p sys/devices/usb2/2-$n/tty sys/class/tty/ttyUSB$n
            echo 1a86 >sys/devices/usb2/2-$n/idVendor
            ln -s $PWD/sys/devices/usb2/2-$n/tty sys/class/tty/ttyUSB$n/device
            touch dev/ttyUSB$n
            ln -s ../../ttyUSB$n dev/serial/by-path/pci-0-usb-0:$n:1.0-port0
            ln -s ../../ttyUSB$n dev/serial/by-path/pci-0-usbv2-0:$n:1.0-port0
        done
        ln -s ../../ttyUSB2 dev/serial/by-id/usb-1a86-if00-port0)");
    const std::string identity = root / "dev/serial/by-id/usb-1a86-if00-port0";
    const std::string place = root / "dev/serial/by-path/pci-0-usb-0:2:1.0-port0";
    // serial numbers of two adapters of one kind, and how the second is linked
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"A5", "A6", identity},  {"", "", place},       {"A5", "", place},
        {"0001", "0001", place}, {"A,5", "A,6", place}, {"  ", "A6", identity},
    };
    for (const auto& [first, second, target] : cases) {
        shell("echo '" + first + "' >sys/devices/usb2/2-1/serial; echo '" + second + "' >sys/devices/usb2/2-2/serial");
        for (const std::string& device : {std::string("ttyUSB2"), identity}) {
            EXPECT_EQ(run({"set", "5", device}), 0) << output;
            EXPECT_EQ(fs::read_symlink(machine.folder / "com5"), target) << first << ' ' << second;
            EXPECT_EQ(says("no serial number of its own"), target == place) << output;
        }
        run({});
        EXPECT_TRUE(says("stable name " + target + (target == place ? ", of the place" : "\n"))) << output;
    }
}

}  // namespace ports::test
