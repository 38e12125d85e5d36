#include "transfer/image_file.h"

#include "support/program.h"
#include "support/user.h"

#include <QDir>

#include <csignal>
#include <sys/resource.h>

class ImageFile : public ProgramTest {
protected:
    ImageFile() { gLangOffset = 10000; }

    User user;
    QByteArray image = QByteArray(kImageSize + 1, 'i');
};

TEST_F(ImageFile, ThatDoesNotFitOnTheDiskLeavesTheOldOne) {
    writeFile("saved.bin", "old");
    // The disk is full for every file beyond 100,000 bytes.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit full{100'000, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &full);
    EXPECT_EQ(fncBinaryFile(file("saved.bin"), image, kWriteFile), 0);
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(user.said().join('|').section(": ", 0, 1), "Application error. / RES : " + file("saved.bin"));
    EXPECT_EQ(readFile("saved.bin"), "old");
    EXPECT_EQ(QDir(file({})).entryList(QDir::Files), QStringList("saved.bin")) << "nothing is left behind";
}

TEST_F(ImageFile, ThatEndsEarlyIsReported) {
    writeFile("short.bin", "old");
    EXPECT_EQ(fncBinaryFile(file("short.bin"), image, kReadFile), 0);
    EXPECT_EQ(user.said(), QStringList("Application error. / RES : " + file("short.bin") +
                                       ": the file ends after 3 of 245760 bytes"));
}
