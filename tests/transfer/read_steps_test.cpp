#include "transfer/block_receiver.h"
#include "transfer/transfer_fixture.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTimer>

#include <csignal>
#include <sys/resource.h>

class ReadTest : public TransferTest {
protected:
    ReadTest() {
        gSaveFileName = file("saved.bin");
        gWaits.readSilence = 400ms;
        options.uploadBlocks = 9;
    }

    /// A whole read in steps that follow one another at once; `between` runs before each of them.
    void read(const std::function<void()>& between = [] {}) {
        gTransferState = steps.fncReadStep(kReadToStart);
        while (gTransferState != kIdleAfterRead) {
            between();
            gTransferState = steps.fncReadStep(gTransferState);
        }
    }

    /// What the file must hold after `blocks` blocks: the firmware so far, then zeros.
    QByteArray firmwareOf(int blocks) const { return firmware().left(blocks * 128).leftJustified(kImageSize, '\0'); }
};

TEST_F(ReadTest, TheFileIsTheFirmwareHoweverTheBlocksArrive) {
    const std::vector<std::string> expected{"300552010C00", "300554010000", "300553010000"};
    for (const char* fault :
         {"", "split:1@block3", "splitat:1,20@block*all", "splitat:131,20@block*all", "delay:60@block5"}) {
        unitsWith({fault});
        read();
        EXPECT_EQ(readFile("saved.bin"), firmwareOf(9)) << fault;
        EXPECT_EQ(requests(), expected) << fault;
        EXPECT_TRUE(simulator->violations().empty()) << fault << ": " << simulator->violations().front();
        EXPECT_EQ(user.texts().back(), "Succeed") << fault;
        QFile::remove(file("saved.bin"));
    }
    EXPECT_EQ(user.boxes().size(), 5U);
    EXPECT_EQ(screen.calls.mid(0, 6),
              QStringList({"timer on", "progress", "timer on", "timer off", "unload", "enable"}));
}

TEST_F(ReadTest, APieceMayBeginWithAnyByte) {
    QByteArray block = "\x01\x01\xfe";
    while (block.size() < 131)
        block += "\x06\x15\x04\x43";
    block = block.left(131) + '\x15';
    for (qsizetype cut = 1; cut < 132; ++cut) {
        gBlockLen = 0;
        gReadCount = 0;
        ASSERT_EQ(takeReceived(block.left(cut)), kIncomplete) << cut;
        ASSERT_EQ(takeReceived(block.mid(cut)), kBlock) << cut;
        subStoreBlock();
        ASSERT_EQ(gReadBuf.left(128), block.mid(3, 128)) << cut;
        ASSERT_EQ(gReadCount, 128);
    }
    const std::pair<const char*, PollResult> controls[] = {
        {"\x06x", kAckCame}, {"\x15", kNakCame}, {"\x04\x04", kEotCame}, {"C", kStartCame}};
    for (const auto& [bytes, result] : controls)
        EXPECT_EQ(takeReceived(bytes), result);
    EXPECT_EQ(takeReceived(QByteArray(5'000, '\x01')), kBlock) << "more than a block is no overflow";
    gReadCount = kImageSize;
    subStoreBlock();
    EXPECT_EQ(gReadCount, kImageSize + 1) << "and more than an image is not stored";
}

TEST_F(ReadTest, AForeignSenderDeliversTheVeryFile) {
    writeFile("sent.bin", gImageBuf.left(kImageSize));
    gWaits.readSilence = 3s;
    options.sender = "sx " + file("sent.bin").toStdString() + " 2>/dev/null";
    unitsWith({});
    read();
    EXPECT_EQ(readFile("saved.bin"), gImageBuf.left(kImageSize));
    EXPECT_EQ(screen.bytes, kImageSize);
}

TEST_F(ReadTest, AReadThatDoesNotComeToItsEndWritesNoFile) {
    const std::string c52 = "300552010C00", c54 = "300554010000", c53 = "300553010000";
    const QString refused =
        "Application error. / RES : The unit did not carry out command 52 in three attempts; its last "
        "answer: 2203";
    struct {
        const char* fault;
        std::vector<std::string> requests;
        QStringList said;
    } const cases[] = {
        {"response:2203@300552*3", {c52, c52, c52, c54, c53}, {refused, "Succeed"}},
        {"response:2203@300552*2", {c52, c52, c52, c54, c53}, {"Succeed"}},
        {"lost@block8*all", {c52, c54, c53}, {"Succeed"}},
        {"cut:70@block8*all", {c52, c54, c53}, {"Succeed"}},
        {"lost@eot2*all", {c52, c54, c53}, {"Succeed"}},
    };
    for (const auto& c : cases) {
        writeFile("saved.bin", "old");
        unitsWith({c.fault});
        read();
        EXPECT_EQ(requests(), c.requests) << c.fault;
        EXPECT_EQ(user.said(), c.said) << c.fault;
        const bool complete = c.requests.size() == 5 && c.said.size() == 1;
        EXPECT_EQ(readFile("saved.bin"), complete ? firmwareOf(9) : "old") << c.fault;
        EXPECT_EQ(screen.calls.back(), "cursor") << c.fault;
    }
}

TEST_F(ReadTest, CancelSendsTenCansAndClosesTheRead) {
    writeFile("saved.bin", "old");
    options.uploadBlocks = 1920;
    unitsWith({});
    read([this] {
        if (gReadCount < 128 * 50)
            return;
        TransferSteps::cancelRead();
        // As long as the next tick is away: the unit is in the middle of a block.
        std::this_thread::sleep_for(50ms);
    });
    EXPECT_EQ(readFile("saved.bin"), "old");
    EXPECT_EQ(requests().back(), "300553010000");
    EXPECT_TRUE(simulator->violations().empty()) << simulator->violations().front();
    EXPECT_TRUE(simulator->hasNoted("upload cancelled by the client"));
    gTransferState = kIdleAfterWrite;
    TransferSteps::cancelRead();
    EXPECT_EQ(gTransferState, kIdleAfterWrite) << "only a read that receives can be cancelled";
}

TEST_F(ReadTest, AUnitThatDoesNotStopSendingCanBeCancelled) {
    writeFile("saved.bin", "old");
    gWaits.exchangeMark = 50ms;
    unitsWith({"flood:20000@block5"});
    QElapsedTimer clock;
    clock.start();
    read([] {
        if (gReadCount > 128 * 50)
            TransferSteps::cancelRead();
    });
    EXPECT_LT(clock.elapsed(), 10'000);
    EXPECT_EQ(readFile("saved.bin"), "old");
    EXPECT_EQ(screen.calls.back(), "cursor");
}

TEST_F(ReadTest, AFileThatCannotBeWrittenIsReportedAndTheOldOneStays) {
    writeFile("saved.bin", "old");
    unitsWith({});
    // The disk is full for every file beyond 100,000 bytes.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit full{100'000, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &full);
    read();
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_TRUE(user.texts()[0].startsWith("Application error. / RES : " + file("saved.bin") + ": "))
        << qPrintable(user.texts()[0]);
    EXPECT_EQ(readFile("saved.bin"), "old");
    EXPECT_EQ(QDir(file({})).entryList(QDir::Files).filter("saved"), QStringList{"saved.bin"})
        << "nothing is left behind";

    gSaveFileName = file("no folder/saved.bin");
    read();
    EXPECT_TRUE(user.texts()[2].startsWith("Application error. / RES : " + gSaveFileName))
        << qPrintable(user.texts()[2]);

    gSaveFileName = file("saved.bin");
    writeFile("saved.bin", QByteArray(300'000, 'x'));
    read();
    EXPECT_EQ(readFile("saved.bin").size(), kImageSize) << "a longer old file is cut";
}

TEST(Comparison, SeesEveryByteTheLastElementIncluded) {
    for (const qsizetype i : {qsizetype{0}, kImageSize / 2, kImageSize - 1, kImageSize}) {
        gReadBuf = gImageBuf;
        EXPECT_EQ(fncCompareImage(), 0);
        gReadBuf[i] = static_cast<char>(gReadBuf[i] + 1);
        EXPECT_EQ(fncCompareImage(), 1) << i;
    }
}
