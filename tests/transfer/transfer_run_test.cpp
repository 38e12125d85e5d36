#include "transfer/transfer_run.h"

#include "support/program.h"
#include "text/message_box.h"
#include "transfer/memory_line.h"

/// Runs on a line in memory. Each one's story is told in order: commands, boxes, calls to the screen.
class Run : public ProgramTest {
protected:
    Run() {
        gLanguage = 1;
        gLangOffset = 10000;
        setMessageBoxes([this](const MessageBox& box) {
            told += QString(box.text).replace("\n", "/");
            boxes += QString("%1|%2|%3").arg(box.title, box.text).arg(box.style);
            meddle();
            return kOk;
        });
        line.whileServing = [this] { meddle(); };
        gImageBuf = image + '\0';
    }
    ~Run() override { setMessageBoxes({}); }

    /// What events can bring while a step shows a box or serves them; nothing of it may act.
    void meddle() {
        told += line.isHeld ? QStringList() : QStringList("bytes act");
        run.cancel();
        run.write({.unit = kInterfaceUnit});
        line.tick();
    }

    /// Waits for the end of the run. @return its story
    QString story() {
        for (int ticks = 0; TransferRun::isRunning() && ticks < 10'000; ++ticks) {
            if (gTransferState == kReadEnded && !line.isHeld)
                told += "a byte closes";
            line.tick();
        }
        if (TransferRun::isRunning() || SleepInhibitor::isHeld())
            told += "runs on";
        if (line.ticks())
            told += "ticks go on";
        return std::exchange(told, {}).join(", ");
    }

    const QByteArray image = someImage();
    const QString error = "Application error./RES : ";
    QStringList told;
    QStringList boxes;  ///< title, text and style of each
    MemoryLine line{told};
    FakeScreen screen{told};
    TransferRun run{screen, line};
};

TEST_F(Run, AWriteReportsItsResultAfterClosing) {
    const QString succeeds = "54, 53, release, Succeed, cursor, version of 1";
    const QString fails = "54, 53, release, Failed, cursor";
    const QString refused51 =
        "50, 51, 51, 51, " + error + "The unit did not carry out command 51 in three attempts; its last answer: 2203, ";
    const QString cancelled = "the unit cancelled the transfer (CAN), ";
    const std::tuple<const char*, bool, QString, QByteArray, QString> cases[] = {
        // name, verified, refused commands, answers to the packets, story
        {"good", false, "", "C\6", "50, 51, progress, " + succeeds},
        {"51 at the third attempt", false, "51 51", "C\6", "50, 51, 51, 51, progress, " + succeeds},
        {"51 refused", false, "51 51 51", "C\6", refused51 + fails},
        {"51 refused, to be verified", true, "51 51 51", "C\6", refused51 + "54, release, Failed, cursor"},
        {"cancelled", false, "", "C\6\x18", "50, 51, progress, " + error + "Block 2 of 1920: " + cancelled + fails},
        {"silent", false, "", ".",
         "50, 51, progress, " + error + "Before the first block: the unit did not ask for the image within 60 s, " +
             fails},
        {"silent after a block", false, "", "C\6.",
         "50, 51, progress, " + error + "Block 2 of 1920: sent 10 times; the unit did not answer, " + fails},
        {"cancelled, to be verified", true, "", "\x18",
         "50, 51, progress, " + error + "Before the first block: " + cancelled + fails}};
    for (const auto& [name, isVerified, refused, answers, expected] : cases) {
        line.refusals = refused.split(' ');
        line.answers = answers;
        run.write({.verificationTicked = isVerified});
        EXPECT_EQ(story(), expected) << name;
    }
    EXPECT_GT(line.time.time_since_epoch(), 60s + 10 * 10s);
    line.answers = "C\6";
    line.failsAtSend = 3;
    run.write({});
    EXPECT_EQ(story(), "50, 51, progress, " + error + "Block 3 of 1920: the port failed, " + fails);
}

TEST_F(Run, NoOtherResponseCountsAsCarriedOut) {
    for (const char* response : {"2203", "2204", "9999", "90", ""}) {
        line.refusal = response;
        line.refusals = {"50", "50", "50"};
        run.write({});
        EXPECT_EQ(story(), "50, 50, 50, 54, 53, release, Failed, cursor") << response;
    }
}

TEST_F(Run, AVerificationComparesOnlyWhatItHasRead) {
    QByteArray lastByteDiffers = image;
    lastByteDiffers.back() ^= 1;
    const QString begins = "52, progress, ";
    const std::tuple<const char*, QByteArray, QByteArrayList, bool, QString, const char*> cases[] = {
        // name, image, what comes back, port gone after the write, start and result of the read-back
        {"same", image, upload(image), false, begins, "Succeed"},
        {"the port is gone, after one that was the same", image, {}, true, error + "closed, ", "Failed"},
        {"last byte differs", image, upload(lastByteDiffers), false, begins, "Failed"},
        {"nothing comes for zeros", QByteArray(kImageSize, 0), {}, false, begins, "Failed"}};
    for (const auto& [name, written, input, isGone, begin, result] : cases) {
        gImageBuf = written + '\0';
        line.isGone = false;
        line.input = input;
        run.write({.verificationTicked = true});
        line.isGone = isGone;
        EXPECT_EQ(story(), "50, 51, progress, 54, verification, " + begin +
                               "54, 54, 53, close, pause of 2000, release, " + result + ", raise, cursor")
            << name;
    }
}

TEST_F(Run, ASaveWritesTheFileOnlyAfterTheSecondEot) {
    const QString refused52 = "52, 52, 52, " + error +
                              "The unit did not carry out command 52 in three attempts; its last answer: 2203, "
                              "54, 53, release, Succeed, cursor";
    const QString good = "52, progress, 54, 53, release, Succeed, cursor";
    const std::tuple<const char*, QByteArrayList, bool, QStringList, QString, QByteArray> cases[] = {
        // name, input, Verification ticked, refused commands, story, content of the file afterwards
        {"good", upload(image), false, {}, good, image},
        {"noise before each block and EOT", upload(image, "\xff"), false, {}, good, image},
        {"more than an image", upload(image + QByteArray(256, 'x')), false, {}, good, image},
        {"one block", upload(image.left(128)), false, {}, good, image.left(128).leftJustified(kImageSize, '\0')},
        {"no second EOT", upload(image).mid(0, 1'921), false, {}, good, "old"},
        {"refused", {}, false, {"52", "52", "52"}, refused52, "old"},
        {"with Verification ticked", upload(image), true, {}, "52, progress, 54, release, cursor", "old"}};
    for (const auto& [name, input, isTicked, refused, expected, saved] : cases) {
        line.input = input;
        line.refusals = refused;
        writeFile("saved.bin", "old");
        run.read({.verificationTicked = isTicked, .file = file("saved.bin ")});
        EXPECT_EQ(story(), expected) << name;
        EXPECT_EQ(readFile("saved.bin"), saved) << name;
    }
    EXPECT_LT(line.time.time_since_epoch(), 5 * 1'920 * 100ms + 10s) << "five images, a block a tick, and one silence";
    EXPECT_EQ(screen.bytes, kImageSize);
    EXPECT_EQ(line.sent.join(), kNak + QByteArray(1'920, kAck) + kNak + kAck);
}

TEST_F(Run, ASaveThatCannotBeWrittenIsReported) {
    line.input = upload(image);
    run.read({.file = file("none/saved.bin")});
    EXPECT_TRUE(story().startsWith("52, progress, " + error + file("none/saved.bin") + ": No such file or directory"));
}

TEST_F(Run, OnlyAReadInProgressCanBeCancelled) {
    run.cancel();
    run.read({.file = file("saved.bin")});
    line.input = upload(image.left(kBlockSize)).mid(0, 1);
    line.failsAtSend = 2;
    line.tick();
    line.whileServing = [] {};
    line.sent.clear();
    line.failsAtSend = 0;
    line.time += 50ms;
    const TransferLine::Time cancelled = line.time;
    run.cancel();
    EXPECT_EQ(line.sent, QByteArrayList(10, QByteArray(1, kCan)));
    line.tick();
    EXPECT_EQ(line.time - cancelled, 200ms) << "a whole tick for the rest of a block, and one while the box is shown";
    EXPECT_EQ(story(), "52, progress, 54, 53, release, Succeed, cursor");
    EXPECT_FALSE(QFile::exists(file("saved.bin")));
    run.read({.file = file("saved.bin")});
    line.failsAtSend = 3;
    run.cancel();
    EXPECT_EQ(line.sent.size(), 3) << "a port that fails is tried no more";
    story();
}

TEST_F(Run, ResultsAreShownInJapanese) {
    gLanguage = 0;
    run.write({});
    story();
    line.refusals = {"50", "50", "50"};
    run.write({});
    story();
    for (const QByteArray& held : {image, QByteArray()}) {
        line.input = upload(held);
        run.write({.verificationTicked = true});
        story();
    }
    run.read({.file = file("saved.bin")});
    story();
    EXPECT_EQ(boxes, QStringList({"Dravolt|正常終了|64", "Dravolt|異常終了|64", "ドラボルト|正常終了|64",
                                  "ドラボルト|ベリファイ失敗|16", "ドラボルト|正常終了|64"}));
}
