#include "transfer/transfer_run.h"

#include "simulator/image.h"
#include "support/program.h"
#include "text/message_box.h"
#include "transfer/memory_line.h"

/// A run on a line in memory. Its whole story is told in order: commands, boxes, and what the screen is asked for.
class Run : public ProgramTest {
protected:
    Run() {
        gLanguage = 1;
        gLangOffset = 10000;
        setMessageBoxes([this](const MessageBox& box) {
            told += QString(box.text).replace("\n", "/");
            boxes += QString("%1|%2|%3").arg(box.title, box.text).arg(box.style);
            return kOk;
        });
        const units::Bytes made = units::makeImage("SVA-STD", 13500, 7);
        gImageBuf = QByteArray(reinterpret_cast<const char*>(made.data()), qsizetype(made.size())) + '\0';
    }
    ~Run() override { setMessageBoxes({}); }

    static QByteArray block(qsizetype number, const QByteArray& image) {
        return QByteArray::fromHex("010000") + image.mid(number * 128, 128) + '?';
    }

    /// What a unit sends that holds `image`, up to its second EOT; each block after `noise`.
    static std::deque<QByteArray> upload(const QByteArray& image, const QByteArray& noise = {}) {
        std::deque<QByteArray> pieces;
        for (qsizetype number = 0; number < image.size() / 128; ++number)
            pieces.push_back(noise + block(number, image));
        pieces.push_back(noise + QByteArray(1, kEot));
        pieces.push_back(noise + QByteArray(1, kEot));
        return pieces;
    }

    /// Lets the run come to its end. @return its story
    QString story() {
        for (int ticks = 0; TransferRun::isRunning() && ticks < 10'000; ++ticks)
            line.tick();
        EXPECT_FALSE(TransferRun::isRunning());
        EXPECT_FALSE(line.ticks());
        EXPECT_TRUE(screen.onlyRises);
        return told.join(", ");
    }

    QStringList told;
    QStringList boxes;  ///< title, text and style of each
    MemoryLine line{told};
    FakeScreen screen{told};
    TransferRun run{screen, line};
};

TEST_F(Run, AWriteSaysHowItWentAfterItHasBeenClosed) {
    struct Case {
        const char* name;
        bool verified;
        QMap<QString, int> refusals;
        const char* answers;  ///< to the packets, the last one for good
        const char* story;
    };
    const QString tried51 =
        "Application error./RES : The unit did not carry out command 51 in three attempts; its last "
        "answer: 2203";
    const Case cases[] = {
        {"good", false, {}, "CA", "50, 51, progress, 54, 53, release, Succeed, cursor, version of 1"},
        {"50 at the third attempt",
         false,
         {{"50", 2}},
         "CA",
         "50, 50, 50, 51, progress, 54, 53, release, Succeed, cursor, version of 1"},
        {"50 refused", false, {{"50", 3}}, "", "50, 50, 50, 54, 53, release, Failed, cursor"},
        {"51 at the third attempt",
         false,
         {{"51", 2}},
         "CA",
         "50, 51, 51, 51, progress, 54, 53, release, Succeed, cursor, version of 1"},
        {"51 refused", false, {{"51", 3}}, "", "50, 51, 51, 51, *, 54, 53, release, Failed, cursor"},
        {"51 refused, a verification was to follow",
         true,
         {{"51", 3}},
         "",
         "50, 51, 51, 51, *, 54, release, Failed, cursor"},
        {"cancelled by the unit",
         false,
         {},
         "CAXX",
         "50, 51, progress, Application error./RES : Block 2 of 1920: the unit cancelled the transfer (CAN), "
         "54, 53, release, Failed, cursor"},
        {"cancelled, a verification was to follow",
         true,
         {},
         "XX",
         "50, 51, progress, Application error./RES : Before the first block: the unit cancelled the transfer (CAN), "
         "54, 53, release, Failed, cursor"},
    };
    for (const Case& c : cases) {
        told.clear();
        line.refusals = c.refusals;
        line.answer = [next = c.answers]() mutable -> std::optional<char> {
            const char byte = *next == 'A' ? kAck : *next == 'X' ? kCan : *next;
            if (next[1] != '\0')
                ++next;
            return byte;
        };
        run.write({.unit = kSensorAmplifier, .verificationTicked = c.verified});
        EXPECT_EQ(story(), QString(c.story).replace("*", tried51)) << c.name;
    }
}

TEST_F(Run, AWriteAfterAPortErrorSaysWhereAndIsClosed) {
    line.failsAtSend = 3;
    run.write({.unit = kInterfaceUnit});
    EXPECT_EQ(story(), "50@0, 51@0, progress, Application error./RES : Block 3 of 1920: the port failed, 54@0, 53@0, "
                       "release, Failed, cursor");
}

TEST_F(Run, AVerificationSucceedsOnlyOverWhatItHasReadItself) {
    const QString write = "50, 51, progress, 54, verification, ";
    const QString end = "54, 54, 53, release, %1, raise, cursor";
    struct Case {
        const char* name;
        std::function<void()> unit;
        QString readBack;
    };
    QByteArray lastByteDiffers = gImageBuf.left(kImageSize);
    lastByteDiffers.back() ^= 1;
    const Case cases[] = {
        {"same", [this] { line.input = upload(gImageBuf.left(kImageSize)); }, "52, progress, " + end.arg("Succeed")},
        {"the port is gone, after one that was the same", [this] { line.isClosed = true; },
         "Application error./RES : closed, " + end.arg("Failed")},
        {"last byte differs", [&] { line.input = upload(lastByteDiffers); }, "52, progress, " + end.arg("Failed")},
        {"one byte more", [this] { line.input = upload(gImageBuf.left(kImageSize) + QByteArray(128, 'x')); },
         "52, progress, " + end.arg("Failed")},
        {"nothing comes", [] {}, "52, progress, " + end.arg("Failed")},
        {"an image of zeros, and nothing comes", [] { gImageBuf.fill('\0'); }, "52, progress, " + end.arg("Failed")},
    };
    for (const Case& c : cases) {
        told.clear();
        line.isClosed = false;
        line.input.clear();
        line.sent.clear();
        run.write({.unit = kSensorAmplifier, .verificationTicked = true});
        EXPECT_EQ(gTransferState, kImageSent);
        c.unit();
        EXPECT_EQ(story(), write + c.readBack) << c.name;
        EXPECT_TRUE(line.isClosed);
    }
}

TEST_F(Run, ASaveWritesTheFileAfterTheSecondEotAlone) {
    const QByteArray image = gImageBuf.left(kImageSize);
    std::deque<QByteArray> noEnd = upload(image);
    noEnd.pop_back();
    const QString told52 = "Application error./RES : The unit did not carry out command 52 in three attempts; its last "
                           "answer: 2203, ";
    const QString good = "52, progress, 54, 53, release, Succeed, cursor";
    struct Case {
        const char* name;
        bool ticked;
        int refusals;
        std::deque<QByteArray> input;
        QString story;
        bool isSaved;
    };
    const Case cases[] = {
        {"good", false, 0, upload(image), good, true},
        {"noise before each block and EOT", false, 0, upload(image, "\xff"), good, true},
        {"more than an image", false, 0, upload(image + QByteArray(256, 'x')), good, true},
        {"no second EOT", false, 0, noEnd, good, false},
        {"refused", false, 3, {}, "52, 52, 52, " + told52 + "54, 53, release, Succeed, cursor", false},
        {"with Verification ticked", true, 0, upload(image), "52, progress, 54, release, cursor", false},
    };
    for (const Case& c : cases) {
        told.clear();
        line.sent.clear();
        line.input = c.input;
        line.refusals = {{"52", c.refusals}};
        writeFile("saved.bin", "old");
        run.read({.unit = kSensorAmplifier, .verificationTicked = c.ticked, .file = file("saved.bin")});
        EXPECT_EQ(story(), c.story) << c.name;
        EXPECT_EQ(readFile("saved.bin"), c.isSaved ? image : QByteArray("old")) << c.name;
    }
    EXPECT_EQ(line.sent.front(), "\x15");
    EXPECT_EQ(std::count(line.sent.begin(), line.sent.end(), "\x06"), 1'921);
    EXPECT_EQ(std::count(line.sent.begin(), line.sent.end(), "\x15"), 2) << "the start, and the first EOT";
}

TEST_F(Run, OnlyAReadThatReceivesIsCancelled) {
    run.cancel();
    line.whileServing = [this] {
        run.cancel();
        run.write({});
        line.tick();
    };
    run.read({.file = file("saved.bin")});
    line.input = {block(0, gImageBuf)};
    line.tick();
    line.sent.clear();
    run.cancel();
    EXPECT_EQ(line.sent, std::vector<QByteArray>(10, "\x18"));
    EXPECT_EQ(story(), "52, progress, 54, 53, release, Succeed, cursor") << "nothing enters a run or closes it twice";
    EXPECT_FALSE(QFile::exists(file("saved.bin")));
}

TEST_F(Run, TheCommandsAfterACancelWaitForTheRestOfABlock) {
    run.read({.file = file("saved.bin")});
    line.time += 99ms;
    const TransferLine::Time cancelled = line.time;
    run.cancel();
    line.tick();
    EXPECT_EQ(line.time - cancelled, 100ms);
    EXPECT_EQ(story(), "52, progress, 54, 53, release, Succeed, cursor");
}

TEST_F(Run, ItsResultsAreInJapaneseToo) {
    gLanguage = 0;
    const QByteArray image = gImageBuf.left(kImageSize);
    run.write({});
    story();
    line.refusals = {{"50", 3}};
    run.write({});
    story();
    run.read({.file = file("saved.bin")});
    story();
    for (const bool same : {true, false}) {
        line.sent.clear();
        line.isClosed = false;
        run.write({.verificationTicked = true});
        line.input = upload(same ? image : QByteArray(kImageSize, 'x'));
        story();
    }
    EXPECT_EQ(boxes, QStringList({"Dravolt|正常終了|64", "Dravolt|異常終了|64", "ドラボルト|正常終了|64",
                                  "ドラボルト|正常終了|64", "ドラボルト|ベリファイ失敗|16"}));
}
