/// main() of every test program that needs Qt: no display, no user settings, not even the user's language.
#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char* argv[]) {
    testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir runtimeFolder;
    for (const char* folder : {"XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"})
        qputenv(folder, runtimeFolder.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LC_ALL", "C.UTF-8");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
