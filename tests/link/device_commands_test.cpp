#include "link/protocol_words.h"
#include "support/wire_rig.h"

class DeviceCommands : public WireTest {
protected:
    QByteArray data;
};

TEST_F(DeviceCommands, TheSensorCheckReturnsTheResponseCodeOrEight) {
    for (const auto& [fault, number] : {std::pair{"", 0}, {"response:2204@0101D4", 2204}, {"bcc@0101D4", 8}}) {
        unitsWith({fault});
        EXPECT_EQ(fncCheckSensorComm(), number) << fault;
    }
}

TEST_F(DeviceCommands, ReadsTimeOutAfterFiveSecondsOperationsAfterTen) {
    unitsWith({"delay:1000@0501", "delay:5200@300550"});
    EXPECT_EQ(fncSendTextCommand("0501", data), "0000");
    EXPECT_EQ(fncOperationCommand(kPrepareWrite, 1), "0000");
}

TEST_F(DeviceCommands, FailuresAreExplainedOnStandardError) {
    EXPECT_EXIT((fncSendTextCommand("0501", data), std::_Exit(0)), testing::ExitedWithCode(0), "No COM port is open");
}
