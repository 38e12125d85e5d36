#include "ports/access.h"
#include "ports/command_line.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <pty.h>
#include <sstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace ports::test {

/// A machine with a built-in port, one that exists in name only, and an adapter with two ports: the second, ttyUSB10,
/// has a driver, a stable name and a real pseudo-terminal behind it.
class Ports : public ::testing::Test {
protected:
    Ports() {
        for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
            ::unsetenv(variable);
        const std::string usb = "sys/devices/usb1/1-1", usbPort = usb + "/1-1:1.1/ttyUSB10";
        write(usb + "/manufacturer", "FTDI");
        write(usb + "/product", "USB UART");
        write(usb + "/serial", "A5");
        write(usb + "/idVendor", "0403");
        write(usb + "/idProduct", "6001");
        link("sys/bus/usb-serial/drivers/ftdi_sio", usbPort + "/driver");
        const std::string board = "sys/devices/00:05", builtInPort = board + "/00:05:0/00:05:0.0";
        link("sys/bus/serial-base/drivers/port", builtInPort + "/driver");
        link("sys/bus/pnp/drivers/serial", board + "/driver");
        device("ttyS0", builtInPort, "4");
        device("ttyS1", builtInPort, "0");
        device("ttyUSB9", usb + "/1-1:1.0", "");
        device("ttyUSB10", usbPort, "");
        write("sys/class/tty/ttyUSB10/dev", "188:10");
        EXPECT_EQ(::openpty(&master_, &slave_, nullptr, nullptr, nullptr), 0);
        fs::remove(root / "dev/ttyUSB10");
        fs::create_symlink(::ttyname(slave_), root / "dev/ttyUSB10");
        link("dev/ttyUSB10", kStable);
        fs::create_directories(machine.folder);
    }

    ~Ports() override {
        ::close(slave_);
        ::close(master_);
        fs::remove_all(root);
    }

    void write(const fs::path& file, const std::string& text) const {
        fs::create_directories((root / file).parent_path());
        std::ofstream(root / file) << text << '\n';
    }

    void link(const fs::path& target, const fs::path& name) const {
        fs::create_directories((root / name).parent_path());
        fs::create_symlink(root / target, root / name);
    }

    void device(const std::string& name, const fs::path& hardware, const std::string& type) const {
        fs::create_directories(root / hardware);
        link(hardware, "sys/class/tty/" + name + "/device");
        write("sys/class/tty/" + name + "/type", type);
        write("dev/" + name, "");
    }

    /// The exit status; what was written is in `output`, without the folder of this run.
    int run(const std::vector<std::string>& arguments) {
        std::ostringstream out;
        const int status = ports::run(machine, arguments, out, out);
        output = out.str();
        for (std::size_t at = 0; (at = output.find(root)) != std::string::npos;)
            output.erase(at, root.string().size());
        return status;
    }

    bool says(const std::string& text) const { return output.find(text) != std::string::npos; }

    static constexpr const char* kStable = "dev/serial/by-id/usb-FTDI-A5-if01-port0";
    const fs::path root = fs::path(::testing::TempDir()) / ("ports_" + std::to_string(::getpid()));
    const Machine machine{root, root / "programs"};
    std::string output;

private:
    int master_ = -1;
    int slave_ = -1;
};

TEST_F(Ports, AreListedWithTheirUsersAndWhatMayDisturbThem) {
    struct stat node {};
    ASSERT_EQ(::stat((root / "dev/ttyUSB10").c_str(), &node), 0);
    char lock[128];
    std::snprintf(lock, sizeof lock, "1: FLOCK  ADVISORY  WRITE 4321 %02x:%02x:%ju 0 EOF", major(node.st_dev),
                  minor(node.st_dev), std::uintmax_t{node.st_ino});
    write("proc/locks", lock);
    write("proc/4321/comm", "minicom");
    write("proc/17/comm", "ModemManager");
    write("proc/18/comm", "brltty");
    write("run/udev/data/c188:10", "E:ID_MM_PORT_IGNORE=1");
    link(kStable, "programs/com2");
    link("dev/ttyUSB7", "programs/com16");
    EXPECT_EQ(run({}), 0);
    for (const char* text :
         {"/dev/ttyS0  COM1 without a link\n    serial port of this computer, driver serial\n",
          "/dev/ttyUSB9\n    FTDI USB UART [0403:6001], serial number A5\n    not in use",
          "/dev/ttyUSB10  COM2\n    FTDI USB UART [0403:6001], driver ftdi_sio, serial number A5\n",
          "in use by minicom (process 4321)\n    you may open it", "may send modem commands to /dev/ttyUSB9",
          "brltty is running", "/dev/ttyUSB7 (not plugged in)"})
        EXPECT_TRUE(says(text)) << text << " is not in\n" << output;
    for (const char* text : {"ttyS1", "commands to /dev/ttyUSB10", "commands to /dev/ttyS0"})
        EXPECT_FALSE(says(text)) << text;
    ::setenv("LANG", "ja_JP.UTF-8", 1);
    run({});
    EXPECT_TRUE(says("点字サービス brltty が動作しています")) << output;
    fs::remove_all(root / "sys/class/tty");
    EXPECT_EQ(run({}), 1) << "no serial device";
}

TEST_F(Ports, AreLinkedByTheirStableNames) {
    write("programs/com4", "a file of the user's");
    const std::string terminal = fs::read_symlink(root / "dev/ttyUSB10");
    const std::string other = root / "dev/ttyUSB9", stable = root / kStable;
    struct {
        std::vector<std::string> arguments;
        int status;
        std::string com3;  ///< where the link of COM3 leads then; empty: it is not there
    } const steps[] = {
        {{"remove", "3"}, 1, ""},
        {{"set", "3", "ttyUSB9"}, 0, other},
        {{"set", "3", terminal}, 0, stable},
        {{"set", "3", "ttyUSB7"}, 1, stable},
        {{"set", "3", "/dev/null"}, 1, stable},
        {{"set", "4", "ttyUSB9"}, 1, stable},
        {{"remove", "4"}, 1, stable},
        {{"set", "17", "ttyUSB9"}, 2, stable},
        {{"set", "3x", "ttyUSB9"}, 2, stable},
        {{"set", "3"}, 2, stable},
        {{"remove", "3"}, 0, ""},
    };
    for (const auto& step : steps) {
        EXPECT_EQ(run(step.arguments), step.status) << step.arguments[0] << ' ' << output;
        std::error_code none;
        EXPECT_EQ(fs::read_symlink(machine.folder / "com3", none), step.com3) << step.arguments[0] << ' ' << output;
    }
    EXPECT_TRUE(fs::is_regular_file(machine.folder / "com4"));
}

TEST_F(Ports, SayWhatTheUserMayNotDo) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can give the folder to another group";
    constexpr gid_t kDialout = 20;
    ASSERT_EQ(::chown(machine.folder.c_str(), 0, kDialout), 0);
    fs::permissions(machine.folder, fs::perms(0775));
    ASSERT_EQ(::seteuid(65534), 0);
    const int status = run({"set", "1", fs::read_symlink(root / "dev/ttyUSB10")});
    ASSERT_EQ(::seteuid(0), 0);
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(says("only members of the group dialout may use it. Add yourself with \"sudo adduser nobody dialout\""))
        << output;
}

}  // namespace ports::test
