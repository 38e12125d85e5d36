#include "transfer/transfer_steps.h"

#include "transfer/communication_check.h"
#include "transfer/response_codes.h"
#include "transfer/transfer_fixture.h"

#include <QTimer>

static const QStringList kWholeRun{"progress", "timer on", "timer off", "unload", "enable", "cursor", "version"};

/// Whether the program waits for an answer to the end. Where it does not the waits stay long, as a busy machine can be
/// late.
static bool waitsInVain(const std::vector<std::string>& faults) {
    return std::any_of(faults.begin(), faults.end(), [](const std::string& fault) {
        return fault.starts_with("silence") || fault.starts_with("lost") || fault.starts_with("answer");
    });
}

TEST_F(TransferTest, AWriteIsTheseCommandsInThisOrderAndTheVeryImage) {
    struct {
        int unitNo;
        units::Unit unit;
        units::CheckMode check;
        const char* suffix;  ///< unit number in the commands
    } const cases[] = {
        {1, units::Unit::amplifier, units::CheckMode::crc, "01"},
        {0, units::Unit::interface, units::CheckMode::sum, "00"},
        {1, units::Unit::amplifier, units::CheckMode::sum, "01"},
    };
    for (const auto& c : cases) {
        options.amplifierCheck = options.interfaceCheck = c.check;
        unitsWith({});
        gUnitNo = c.unitNo;
        const std::string unit = c.suffix;
        EXPECT_EQ(write(), kIdleAfterWrite);
        EXPECT_EQ(requests(), (std::vector<std::string>{"300550" + unit + "0000", "300551" + unit + "0C00",
                                                        "300554" + unit + "0000", "300553" + unit + "0000"}));
        EXPECT_TRUE(unitHoldsImage(c.unit));
        EXPECT_EQ(screen.calls, kWholeRun);
        EXPECT_EQ(screen.bytes, kImageSize);
        EXPECT_EQ(user.said(), QStringList{"Succeed"});
        EXPECT_TRUE(simulator->violations().empty());
    }
    EXPECT_EQ(user.boxes()[0].title, "Dravolt");
}

TEST_F(TransferTest, AForeignReceiverGetsTheVeryImage) {
    for (const char* receiver : {"rx", "rx -c"}) {
        options.receiver =
            std::string("sleep 0.1; ") + receiver + " " + file("received.bin").toStdString() + " 2>/dev/null";
        unitsWith({});
        EXPECT_EQ(write(), kIdleAfterWrite) << receiver;
        EXPECT_EQ(user.said(), QStringList{"Succeed"}) << receiver;
        EXPECT_EQ(readFile("received.bin"), gImageBuf.left(kImageSize)) << receiver;
        QFile::remove(file("received.bin"));
    }
}

TEST_F(TransferTest, WhatTheUnitDoesToPacketsEndsAsItMust) {
    gWaits.transferStart = 300ms;
    // Late enough that the first start character is not dropped together with the end of the reply before it.
    const std::string kLateStart = "delay:40@start";
    const QString refused = "sent 10 times; the unit refused it (NAK)";
    const QString silent = "sent 10 times; the unit did not answer";
    const QString cancelled = "the unit cancelled the transfer (CAN)";
    const QString begin = "Before the first block: ";
    const QString end = "At the end of the image (EOT): ";
    struct {
        std::vector<std::string> faults;
        QString failure;  ///< empty: the write succeeds
    } const cases[] = {
        {{"nak@packet5*9"}, ""},
        {{"nak@packet5*10"}, "Block 5 of 1920: " + refused},
        {{"lost@packet256"}, ""},
        {{"nak@packet3*5", "silence@packet3#6*4"}, ""},
        {{"silence@packet1920*10"}, "Block 1920 of 1920: " + silent},
        {{"answer:4307000006@packet9"}, ""},
        {{"answer:1806@packet9"}, ""},
        {{"can:2@packet9"}, "Block 9 of 1920: " + cancelled},
        {{"noise:39@start*9", kLateStart}, ""},
        {{"noise:39@start*10", kLateStart}, begin + "10 unexpected bytes came, the last one 39"},
        {{"noise:18@start", kLateStart}, ""},
        {{"can:2@start", kLateStart}, begin + cancelled},
        {{"lost@start*all"}, begin + "the unit did not ask for the image within 0.3 s"},
        {{"nak@eot"}, ""},
        {{"lost@eot"}, ""},
        {{"nak@eot*10"}, end + refused},
        {{"can:2@eot"}, end + cancelled},
    };
    for (const auto& c : cases) {
        const std::string name = c.faults.front();
        unitsWith(c.faults);
        gWaits.packetAnswer = waitsInVain(c.faults) ? 150ms : 10s;
        EXPECT_EQ(write(), kIdleAfterWrite) << name;
        const QStringList expected = c.failure.isEmpty()
                                         ? QStringList{"Succeed"}
                                         : QStringList{"Application error. / RES : " + c.failure, "Failed"};
        EXPECT_EQ(user.said(), expected) << name;
        EXPECT_EQ(unitHoldsImage(), c.failure.isEmpty()) << name;
        EXPECT_EQ(screen.calls.contains("version"), c.failure.isEmpty()) << name;
        EXPECT_EQ(screen.calls.count("enable"), 1) << name;
        EXPECT_EQ(requests().back(), "300553010000") << name << ": the transfer is closed";
        EXPECT_TRUE(simulator->violations().empty()) << name << ": " << simulator->violations().front();
        EXPECT_TRUE(simulator->unusedFaults().empty()) << name;
    }
}

TEST_F(TransferTest, ARefusedStartIsTriedThreeTimesThenClosed) {
    const std::string c50 = "300550010000", c51 = "300551010C00", c54 = "300554010000", c53 = "300553010000";
    const QString failed51 = "Application error. / RES : The unit did not carry out command 51 in three attempts; its "
                             "last answer: ";
    const QString box1234 = "Communication error. / Application is shut down by [cancel]. / ";
    struct {
        std::vector<std::string> faults;
        std::vector<std::string> requests;
        QStringList said;
        int retryAfter;
    } const cases[] = {
        {{"response:2203@300550*2"}, {c50, c50, c50, c51, c54, c53}, {"Succeed"}, 0},
        {{"response:1234@300550*3"}, {c50, c50, c50, c54, c53}, {box1234, "Failed"}, 4},
        {{"response:2203@300551*2"}, {c50, c51, c51, c51, c54, c53}, {"Succeed"}, 3},
        {{"response:2203@300551*3"}, {c50, c51, c51, c51, c54, c53}, {failed51 + "2203", "Failed"}, 4},
        {{"silence@300551*3"}, {c50, c51, c51, c51, c54, c53}, {failed51 + "9999", "Failed"}, 4},
        {{"bcc@300551*3"}, {c50, c51, c51, c51, c54, c53}, {failed51 + "unusable", "Failed"}, 4},
    };
    for (const auto& c : cases) {
        const std::string name = c.faults.front();
        unitsWith(c.faults);
        gWaits.operationReply = waitsInVain(c.faults) ? 300ms : 10s;
        EXPECT_EQ(write(), kIdleAfterWrite) << name;
        EXPECT_EQ(requests(), c.requests) << name;
        EXPECT_EQ(user.said(), c.said) << name;
        EXPECT_EQ(gintCommRetry, c.retryAfter) << name;
        EXPECT_EQ(screen.calls.contains("version"), c.said.back() == "Succeed") << name;
    }
}

TEST_F(TransferTest, AUnitThatDoesNotStopSendingLeavesTheWindowAlive) {
    gWaits.exchangeMark = 50ms;
    const std::pair<const char*, QStringList> cases[] = {
        {"flood:600@packet3", {"Succeed"}},
        {"flood:600@start",
         {"Application error. / RES : Before the first block: 10 unexpected bytes came, the last one 55",
          "It is a receiving timeout error.", "It is a receiving timeout error.", "Failed"}},
    };
    for (const auto& [fault, said] : cases) {
        unitsWith({fault});
        int ticks = 0;
        QTimer timer;
        timer.callOnTimeout([&ticks] { ++ticks; });
        timer.start(10ms);
        EXPECT_EQ(write(), kIdleAfterWrite) << fault;
        EXPECT_EQ(user.said(), said) << fault;
        EXPECT_GT(ticks, said.size() == 1 ? 20 : 0) << fault;
        EXPECT_EQ(screen.calls.count("enable"), 1) << fault;
    }
}

TEST_F(TransferTest, AStepThatFindsAnotherRunningDoesNothing) {
    unitsWith({"delay:100@packet3"});
    int nested = -1;
    QTimer::singleShot(50ms, [&] { nested = steps.fncWriteStep(kImageSent); });
    EXPECT_EQ(steps.fncWriteStep(kWriteToStart), kImageSent);
    EXPECT_EQ(nested, 0);
    EXPECT_EQ(requests().back(), "300551010C00") << "the nested step has sent nothing";
    EXPECT_FALSE(gTransferBusy);
    EXPECT_EQ(steps.fncWriteStep(9), 9) << "other states are returned unchanged";
}

TEST_F(TransferTest, TheCommunicationCheckGivesTheResponseAsANumber) {
    const std::pair<const char*, int> cases[] = {
        {"", 0},           {"response:2203@0101D4", 2203}, {"endcode:11@0101D4", 9011}, {"endcode:1A@0101D4", 8},
        {"bcc@0101D4", 8}, {"silence@0101D4", 9999}};
    gWaits.reply = 150ms;
    for (const auto& [fault, result] : cases) {
        unitsWith({fault});
        EXPECT_EQ(fncCheckSensorComm(), result) << fault;
    }
}

TEST(ResponseCodes, OnlyAnExactCodeIsKnown) {
    EXPECT_EQ(fncResultNo("0000"), kResultSuccess);
    EXPECT_EQ(fncResultNo("5555"), 27);
    for (const char* unknown : {"0000 ", "000", "", "9011", "abcd"})
        EXPECT_EQ(fncResultNo(unknown), 8) << unknown;
}
