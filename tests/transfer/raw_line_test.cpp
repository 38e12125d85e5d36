#include "transfer/raw_line.h"

#include "link/frame.h"
#include "link/ms_comm.h"
#include "support/wire_rig.h"
#include "system/event_wait.h"
#include "transfer/memory_line.h"

#include <thread>

class RawLineTest : public WireTest {
protected:
    RawLineTest() { gImageBuf = someImage() + '\0'; }

    /// Waits for the end of the run. @return what the program says
    QStringList end() {
        waitServingEvents(20s, [] { return !TransferRun::isRunning(); });
        return user.said();
    }

    QStringList told;
    FakeScreen screen{told};
    RawLine line;
    TransferRun run{screen, line};
};

TEST_F(RawLineTest, AForeignReceiverGetsTheExactImage) {
    for (const char* receiver : {"rx", "rx -c"}) {
        options.receiver = std::string("sleep 0.1; ") + receiver + " " + file("got.bin").toStdString() + " 2>/dev/null";
        unitsWith({});
        run.write({});
        EXPECT_EQ(end(), QStringList{"Succeed"}) << receiver;
        EXPECT_EQ(readFile("got.bin"), gImageBuf.left(kImageSize)) << receiver;
        QFile::remove(file("got.bin"));
    }
}

TEST_F(RawLineTest, ReadStepsDoNotWaitForTheTick) {
    gWaits.tick = 2'000ms;
    options.uploadBlocks = 300;
    unitsWith(
        {"split:1@block3", "splitat:1,20@block4", "splitat:131,20@block5", "noise:ff180600@block6", "noise:ff@eot1"});
    run.read({.file = file("saved.bin")});
    EXPECT_TRUE(waitServingEvents(1'900ms, [this] { return QFile::exists(file("saved.bin")); }));
    // The last byte has been answered; only the tick closes the read.
    EXPECT_TRUE(TransferRun::isRunning());
    EXPECT_EQ(end(), QStringList("Succeed"));
    EXPECT_EQ(readFile("saved.bin"), firmware().left(300 * kBlockSize).leftJustified(kImageSize, '\0'));
    EXPECT_EQ(simulator->violations(), std::vector<std::string>{});
}

TEST_F(RawLineTest, AWaitServesTicksUntilTheyAreStopped) {
    unitsWith({});
    int ticks = 0;
    line.startTicks([&ticks] { ++ticks; });
    EXPECT_EQ(line.fncWaitByte(500ms), std::nullopt);
    EXPECT_GT(ticks, 2);
    ticks = 0;
    boundPort().output(buildRequestFrame("0501"));
    std::this_thread::sleep_for(150ms);
    EXPECT_TRUE(line.fncWaitByte(1s).has_value());
    EXPECT_GT(ticks, 0) << "also where each byte is there at once";
    EXPECT_EQ(line.fncSendRaw("x"), kResultSuccess) << "what has come for other bytes goes";
    line.stopTicks();
    ticks = 0;
    EXPECT_EQ(line.fncWaitByte(200ms), std::nullopt);
    EXPECT_EQ(ticks, 0);
}

TEST_F(RawLineTest, APortErrorIsShown) {
    unitsWith({});
    simulator.reset();
    EXPECT_EQ(line.fncSendRaw("x"), failure::kDeviceIo);
    ASSERT_EQ(user.boxes().size(), 1U);
    EXPECT_EQ(user.boxes()[0].title, "エラー");
}
