#include "support/units_test.h"

class DeviceCommands : public UnitsTest {
protected:
    QByteArray data;
};

TEST_F(DeviceCommands, BuildTheirTexts) {
    // The units refuse what does not fit their state, but they write down what came.
    unitsWith({});
    fncReadVariable("D4", 300, 0x1'0002, data, 1s, false);
    fncOperationCommand("54", 1);
    fncOperationCommand("50", 0);
    fncOperationCommand("51", 300);
    fncOperationCommand("52", 255);
    EXPECT_EQ(requests(), (std::vector<std::string>{"0101D4012C000002", "300554010000", "300550000000", "3005512C0C00",
                                                    "300552FF0C00"}));
    subPortClose();
    EXPECT_EQ(fncSendTextCommand("0501", data), "9999");
    EXPECT_EQ(user.said(), QStringList{"It is a receiving timeout error."});
}

TEST_F(DeviceCommands, TheStatusReadGivesStatusAndSensorCount) {
    unitsWith({"data:00 2@0601", "data:01x1@0601#2", "response:1004@0601#3"});
    EXPECT_EQ(fncReadUnitStatus("0601", data), "0000");
    EXPECT_EQ(gUnitStatus, "00");
    EXPECT_EQ(gSensorCount, 2);
    EXPECT_EQ(fncReadUnitStatus("0601", data), "9999") << "a count that is no number is a failure";
    EXPECT_EQ(user.said(), QStringList{"Application error. / RES : 0000"});
    EXPECT_EQ(fncReadUnitStatus("0601", data), "1004");
    EXPECT_EQ(gUnitStatus, "");
    EXPECT_EQ(gSensorCount, 0);
}
