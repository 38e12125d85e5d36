#include "link/device_commands.h"

#include "link/com_port.h"
#include "link/frame_link.h"
#include "support/boxes.h"
#include "support/peer.h"
#include "support/program.h"

using namespace std::chrono_literals;

class DeviceCommands : public ProgramTest {
protected:
    ~DeviceCommands() override {
        subPortClose();
        gblnCommBusy = false;
    }

    ScriptedPeer& peerWith(std::vector<QByteArray> replies) {
        peer = std::make_unique<ScriptedPeer>(std::move(replies));
        linkPort(1, peer->device());
        EXPECT_TRUE(fncPortOpen(1, QStringLiteral("38400,n,8,1")));
        return *peer;
    }

    /// Command text of the last request: between node, sub-address, service and ETX, check byte.
    QByteArray lastCommand() { return peer->requests().back().mid(6).chopped(2); }

    std::unique_ptr<ScriptedPeer> peer;
    QByteArray data;
    BoxOperator user;
};

TEST_F(DeviceCommands, BuildTheirTexts) {
    const QByteArray good = replyFrame("00000030050000");
    peerWith(std::vector<QByteArray>(6, good));
    fncReadVariable("D5", 1, 1, data, 1s, false);
    EXPECT_EQ(lastCommand(), "0101D50001000001");
    fncReadVariable("D4", 300, 0x1'0002, data, 1s, false);
    EXPECT_EQ(lastCommand(), "0101D4012C000002");
    const std::pair<const char*, QByteArray> operations[] = {
        {"52", "300552010C00"}, {"51", "300551010C00"}, {"54", "300554010000"}};
    for (const auto& [code, text] : operations) {
        EXPECT_EQ(fncOperationCommand(code, 1), "0000");
        EXPECT_EQ(lastCommand(), text);
    }
    fncOperationCommand("53", 300);
    EXPECT_EQ(lastCommand(), "3005532C0000");
}

TEST_F(DeviceCommands, TheStatusReadGivesStatusAndSensorCount) {
    peerWith({replyFrame("0000000601000000 2"), replyFrame("0000000601000001x1"), replyFrame("00000F06011004")});
    EXPECT_EQ(fncReadUnitStatus("0601", data), "0000");
    EXPECT_EQ(gUnitStatus, "00");
    EXPECT_EQ(gSensorCount, 2);
    EXPECT_EQ(fncReadUnitStatus("0601", data), "9999") << "a count that is no number is a failure";
    EXPECT_EQ(user.texts(), QStringList{"アプリケーションで異常が発生しました。 / RES : 0000"});
    EXPECT_EQ(fncReadUnitStatus("0601", data), "1004");
    EXPECT_EQ(gUnitStatus, "");
    EXPECT_EQ(gSensorCount, 0);
}

TEST_F(DeviceCommands, AFailureIsShownAndGives9999) {
    EXPECT_EQ(fncSendTextCommand("0501", data), "9999") << "no port is open";
    EXPECT_EQ(user.texts(), QStringList{"受信タイムアウトエラーです。"});
}
