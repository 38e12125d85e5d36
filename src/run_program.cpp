#include "run_program.h"

#include "app/startup_form.h"
#include "link/com_port.h"
#include "system/program_end.h"
#include "system/program_folder.h"
#include "system/sleep_inhibitor.h"
#include "system/standard_error.h"
#include "text/message_box.h"
#include "upgrade/main_window.h"
#include "widgets/box_window.h"
#include "widgets/colours.h"
#include "widgets/fonts.h"

#include <QApplication>
#include <QDir>
#include <QIcon>
#include <QSessionManager>

/// The icon of this program; each has its own under the same name.
static QIcon programIcon() {
    QIcon icon;
    const QFileInfoList pictures = QDir(QStringLiteral(":/icon")).entryInfoList();
    for (const QFileInfo& picture : pictures)
        icon.addFile(picture.filePath());
    return icon;
}

int runProgram(int argc, char* argv[], Edition edition) {
    guardStandardError();
    QApplication application(argc, argv);
    QObject::connect(
        &application, &QGuiApplication::commitDataRequest, &application,
        [](QSessionManager& session) {
            if (SleepInhibitor::isHeld())
                session.cancel();
        },
        Qt::DirectConnection);
    // Forms come and go; only endProgram() ends the program.
    QApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setDesktopFileName(QCoreApplication::applicationName());
    QGuiApplication::setWindowIcon(programIcon());
    setProgramFolder(QCoreApplication::applicationDirPath());
    setMessageBoxes(showBoxWindow);
    useGothicFonts();
    repairDarkPalette();
    setProgramEnd([] {
        subPortClose();
        endProcess();
    });
    frmMain mainWindow;
    if (edition == Edition::service)
        mainWindow.showServiceControls();
    frmStartUp startUp(mainWindow);
    startUp.load();
    return QApplication::exec();
}
