#include "transfer/communication_check.h"
#include "transfer/transfer_fixture.h"

class WriteTest : public TransferTest {
protected:
    /// Plugs in units with `faults` and does a whole write, the tick that closes it included; nothing waits in vain for
    /// longer than `wait`. @return what the program says
    QStringList write(const std::vector<std::string>& faults, std::chrono::milliseconds wait) {
        unitsWith(faults);
        gWaits.packetAnswer = gWaits.operationReply = wait;
        screen = FakeScreen{};
        const int state = steps.fncWriteStep(kWriteToStart);
        EXPECT_EQ(state == kImageSent ? steps.fncWriteStep(state) : state, kIdleAfterWrite);
        const QStringList said = user.said();
        EXPECT_EQ(unitHoldsImage(), said.last() == "Succeed");
        EXPECT_EQ(screen.calls.contains("version"), said.last() == "Succeed");
        EXPECT_EQ(screen.calls.count("enable"), 1);
        EXPECT_EQ(requests().back(), "300553010000") << "the transfer is closed";
        EXPECT_TRUE(simulator->violations().empty()) << simulator->violations().front();
        EXPECT_TRUE(simulator->unusedFaults().empty());
        return said;
    }

    // Where nothing waits in vain the waits stay long, as a busy machine can be late.
    static constexpr auto kLong = 10'000ms;
    static constexpr auto kShort = 300ms;
};

TEST_F(WriteTest, AForeignReceiverGetsTheVeryImage) {
    for (const char* receiver : {"rx", "rx -c"}) {
        options.receiver =
            std::string("sleep 0.1; ") + receiver + " " + file("received.bin").toStdString() + " 2>/dev/null";
        unitsWith({});
        EXPECT_EQ(steps.fncWriteStep(steps.fncWriteStep(kWriteToStart)), kIdleAfterWrite) << receiver;
        EXPECT_EQ(user.said(), QStringList{"Succeed"}) << receiver;
        EXPECT_EQ(readFile("received.bin"), gImageBuf.left(kImageSize)) << receiver;
        QFile::remove(file("received.bin"));
    }
}

TEST_F(WriteTest, WhatTheUnitDoesToPacketsEndsAsItMust) {
    gWaits.transferStart = 300ms;
    // Late enough that the first start character is not dropped together with the end of the reply before it.
    const std::string kLateStart = "delay:40@start";
    const QString refused = "sent 10 times; the unit refused it (NAK)";
    const QString cancelled = "the unit cancelled the transfer (CAN)";
    const QString begin = "Before the first block: ";
    const QString end = "At the end of the image (EOT): ";
    const std::tuple<std::vector<std::string>, std::chrono::milliseconds, QString> cases[] = {
        {{"nak@packet5*9"}, kLong, ""},
        {{"nak@packet5*10"}, kLong, "Block 5 of 1920: " + refused},
        {{"nak@packet3*5", "silence@packet3#6*4"}, kShort, ""},
        {{"silence@packet1920*10"}, kShort, "Block 1920 of 1920: sent 10 times; the unit did not answer"},
        {{"lost@packet256"}, kShort, ""},
        {{"answer:4307000006@packet9"}, kLong, ""},
        {{"answer:1815@packet9", "answer:1806@packet9#2"}, kLong, ""},
        {{"can:2@packet9"}, kLong, "Block 9 of 1920: " + cancelled},
        {{"noise:39@start*9", kLateStart}, kLong, ""},
        {{"noise:39@start*10", kLateStart}, kLong, begin + "10 unexpected bytes came, the last one 39"},
        {{"noise:39@start*5", "answer:18@start#6", "noise:39@start#7*5", kLateStart}, kLong, ""},
        {{"can:2@start", kLateStart}, kLong, begin + cancelled},
        {{"lost@start*all"}, kLong, begin + "the unit did not ask for the image within 0.3 s"},
        {{"nak@eot", "lost@eot#2"}, kShort, ""},
        {{"nak@eot*10"}, kLong, end + refused},
        {{"can:2@eot"}, kLong, end + cancelled},
    };
    for (const auto& [faults, wait, failure] : cases) {
        SCOPED_TRACE(faults.front());
        EXPECT_EQ(write(faults, wait), failure.isEmpty()
                                           ? QStringList{"Succeed"}
                                           : QStringList({"Application error. / RES : " + failure, "Failed"}));
    }
}

TEST_F(WriteTest, ARefusedStartIsTriedThreeTimesThenClosed) {
    const std::string c50 = "300550010000", c51 = "300551010C00", c54 = "300554010000", c53 = "300553010000";
    const QString failed51 = "Application error. / RES : The unit did not carry out command 51 in three attempts; its "
                             "last answer: ";
    const QString box1234 = "Communication error. / Application is shut down by [cancel]. / ";
    const std::tuple<std::string, std::chrono::milliseconds, std::vector<std::string>, QStringList> cases[] = {
        {"response:2203@300550*2", kLong, {c50, c50, c50, c51, c54, c53}, {"Succeed"}},
        {"response:1234@300550*3", kLong, {c50, c50, c50, c54, c53}, {box1234, "Failed"}},
        {"response:2203@300551*2", kLong, {c50, c51, c51, c51, c54, c53}, {"Succeed"}},
        {"silence@300551*3", kShort, {c50, c51, c51, c51, c54, c53}, {failed51 + "9999", "Failed"}},
        {"bcc@300551*3", kLong, {c50, c51, c51, c51, c54, c53}, {failed51 + "unusable", "Failed"}},
    };
    for (const auto& [fault, wait, sent, said] : cases) {
        SCOPED_TRACE(fault);
        EXPECT_EQ(write({fault}, wait), said);
        EXPECT_EQ(requests(), sent);
    }
}

TEST_F(WriteTest, TheCommunicationCheckGivesTheResponseAsANumber) {
    gWaits.reply = 150ms;
    unitsWith({"response:2203@0101D4", "bcc@0101D4#2", "silence@0101D4#3"});
    for (const int result : {2203, 8, 9999})
        EXPECT_EQ(fncCheckSensorComm(), result);
}

TEST_F(WriteTest, AStepThatFindsAnotherRunningDoesNothing) {
    gTransferBusy = true;
    EXPECT_EQ(steps.fncWriteStep(kWriteToStart) + steps.fncReadStep(kReadToStart), 0);
    gTransferBusy = false;
}
