#include "transfer/binary_file.h"
#include "transfer/transfer_fixture.h"

#include <QDir>

#include <csignal>
#include <sys/resource.h>

class ReadTest : public TransferTest {
protected:
    ReadTest() {
        gSaveFileName = file("saved.bin");
        writeFile("saved.bin", "old");
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
        EXPECT_TRUE(screen.calls.endsWith("cursor"));
    }

    QByteArray saved() const { return readFile("saved.bin"); }
};

TEST_F(ReadTest, TheFileIsTheFirmwareHoweverTheBlocksArrive) {
    const std::vector<std::string> expected{"300552010C00", "300554010000", "300553010000"};
    for (const char* fault : {"", "split:1@block3", "splitat:1,20@block*all", "splitat:131,20@block*all",
                              "noise:ff@block2", "noise:ff180600@block*all", "noise:ff@eot1", "noise:ff@eot2"}) {
        writeFile("saved.bin", "old");
        unitsWith({fault});
        read();
        EXPECT_EQ(saved(), firmware().left(9 * 128).leftJustified(kImageSize, '\0')) << fault;
        EXPECT_EQ(requests(), expected) << fault;
        EXPECT_TRUE(simulator->violations().empty()) << fault << ": " << simulator->violations().front();
        EXPECT_EQ(user.said(), QStringList("Succeed")) << fault;
    }
    EXPECT_EQ(screen.calls.mid(0, 6),
              QStringList({"timer on", "progress", "timer on", "timer off", "unload", "enable"}));
}

TEST_F(ReadTest, AReadThatDoesNotComeToItsEndWritesNoFile) {
    const std::pair<const char*, QStringList> cases[] = {
        {"response:2203@300552*3",
         {"Application error. / RES : The unit did not carry out command 52 in three attempts; its last answer: 2203",
          "Succeed"}},
        {"cut:70@block8*all", {"Succeed"}},
        {"lost@eot2*all", {"Succeed"}},
    };
    for (const auto& [fault, said] : cases) {
        unitsWith({fault});
        read();
        EXPECT_EQ(user.said(), said) << fault;
        EXPECT_EQ(requests().size(), said.size() == 1 ? 3U : 5U) << fault;
        EXPECT_EQ(saved(), "old") << fault;
    }
}

TEST_F(ReadTest, CancelSendsTenCansAndClosesTheRead) {
    gWaits.exchangeMark = 50ms;
    options.uploadBlocks = 1920;
    for (const char* fault : {"", "flood:20000@block40"}) {
        unitsWith({fault});
        read([this] {
            // A unit that sends more than an image.
            if (gReadCount == 128 * 20)
                gReadCount = kImageSize - 128 * 10;
            if (gReadCount < kImageSize || !simulator->hasNoted("block 40 "))
                return;
            TransferSteps::cancelRead();
            // As long as the next tick is away: the unit is in the middle of a block.
            std::this_thread::sleep_for(50ms);
        });
        EXPECT_EQ(saved(), "old");
        EXPECT_TRUE(*fault != '\0' || simulator->violations().empty()) << simulator->violations().front();
        EXPECT_TRUE(*fault != '\0' || simulator->hasNoted("upload cancelled by the client"));
    }
    gTransferState = kIdleAfterWrite;
    TransferSteps::cancelRead();
    EXPECT_EQ(gTransferState, kIdleAfterWrite) << "only a read that receives can be cancelled";
}

TEST_F(ReadTest, AFileThatCannotBeWrittenIsReportedAndTheOldOneStays) {
    unitsWith({});
    // The disk is full for every file beyond 100,000 bytes.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit full{100'000, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &full);
    read();
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_TRUE(user.said()[0].startsWith("Application error. / RES : " + gSaveFileName + ": "));
    EXPECT_EQ(saved(), "old");
    EXPECT_EQ(QDir(file({})).entryList(QDir::Files).filter("saved"), QStringList{"saved.bin"})
        << "nothing is left behind";
    writeFile("saved.bin", QByteArray(300'000, 'x'));
    read();
    EXPECT_EQ(saved().size(), kImageSize) << "a longer old file is cut";
}

TEST_F(ReadTest, AFileThatEndsEarlyIsReported) {
    QByteArray buffer(kImageSize + 1, '\0');
    EXPECT_EQ(fncBinaryFile(gSaveFileName, buffer, kReadFile), 0);
    EXPECT_EQ(user.said()[0],
              "Application error. / RES : " + gSaveFileName + ": the file ends after 3 of 245760 bytes");
}
