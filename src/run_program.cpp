#include "run_program.h"

#include "app/startup_form.h"
#include "link/com_port.h"
#include "system/program_end.h"
#include "system/program_folder.h"
#include "text/fonts.h"
#include "upgrade/main_window.h"

#include <QApplication>

#include <cstdlib>

int runProgram(int argc, char* argv[], Edition edition) {
    QApplication application(argc, argv);
    // Forms come and go; only endProgram() ends the program.
    QApplication::setQuitOnLastWindowClosed(false);
    setProgramFolder(QCoreApplication::applicationDirPath());
    useGothicFonts();
    setProgramEnd([] {
        subPortClose();
        std::_Exit(EXIT_SUCCESS);
    });
    frmMain mainWindow;
    if (edition == Edition::service)
        mainWindow.showServiceControls();
    frmStartUp startUp(mainWindow);
    startUp.load();
    return QApplication::exec();
}
