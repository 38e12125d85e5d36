#include "support/units_test.h"

class DeviceCommands : public UnitsTest {};

TEST_F(DeviceCommands, AFailureIsShownAndTheStatusReadGivesStatusAndSensorCount) {
    QByteArray data;
    EXPECT_EQ(fncSendTextCommand("0501", data), "9999");
    EXPECT_EQ(user.said(), QStringList{"It is a receiving timeout error."}) << "no port is open";
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
