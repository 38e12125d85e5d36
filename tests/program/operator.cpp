/// An operator in the process of the delivered program, linked to its main(), who also sees what main() has set up.
#include "simulator/image.h"
#include "simulator/simulator.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QIcon>
#include <QLineEdit>
#include <QMessageBox>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

static void require(bool holds, const char* what) {
    if (holds)
        return;
    std::printf("Not seen: %s\n", what);
    std::fflush(stdout);
    std::_Exit(EXIT_FAILURE);
}

/// As if the terminal had been closed before main().
[[maybe_unused]] static const int kClosedTerminal = [] {
    int ends[2];
    require(::pipe(ends) == 0, "a pipe");
    ::close(ends[0]);
    return ::dup2(ends[1], STDERR_FILENO);
}();

class Operator {
public:
    Operator() {
        write("Setting.INI", "[IFU]\nCOM=1\n");
        write("TYPE.INI", "[AMP_TYPE]\n0A=12000,AMP-A\n[AMP_BIN_TYPE]\nAMPKEY=0A\n");
        write("amp.bin", {reinterpret_cast<const char*>(image_.data()), qsizetype(image_.size())});
        QFile::remove(path("com1"));
        require(QFile::link(QString::fromStdString(units_.port()), path("com1")), "a link to the port");
        look();
    }

private:
    static QString path(const char* name) { return QCoreApplication::applicationDirPath() + '/' + name; }

    static void write(const char* name, const QByteArray& content) {
        QFile file(path(name));
        require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), "a folder of the program's");
    }

    static void press(const QWidget& window, const char* name) { window.findChild<QAbstractButton*>(name)->click(); }

    /// Operates what is on the screen, repeatedly, even from inside a modal dialog's event loop.
    void look() {
        QTimer::singleShot(50, [this] { look(); });
        QWidget* modal = QApplication::activeModalWidget();
        if (auto* files = qobject_cast<QFileDialog*>(modal)) {
            files->findChild<QLineEdit*>()->setText(path("amp.bin"));
            QMetaObject::invokeMethod(files, "accept");
        } else if (auto* box = qobject_cast<QMessageBox*>(modal)) {
            succeeded_ = box->text() == "Succeed";
            require(succeeded_, qPrintable(box->text()));
            box->buttons().front()->click();
        } else if (modal != nullptr && modal->objectName() == "frmLanguage") {
            press(*modal, "cmdOK");
        } else if (modal == nullptr) {
            workWindow();
        }
    }

    void workWindow() {
        for (const QWidget* window : QApplication::topLevelWidgets())
            if (window->objectName() == "frmMain" && window->isVisible() &&
                window->findChild<QWidget*>("cmdEnd")->isEnabled())
                goOn(*window);
    }

    void goOn(const QWidget& window) {
        if (succeeded_)
            end(window);
        press(window, window.findChild<QWidget*>("cmdUpgrade")->isEnabled() ? "cmdUpgrade" : "cmdLoading");
    }

    void end(const QWidget& window) {
        require(units_.firmware(units::Unit::amplifier) == image_, "the image in the unit");
        require(!window.windowIcon().availableSizes().empty(), "an icon");
        require(QApplication::font().families().size() > 1, "Japanese in a font of its own");
        for (const char* control : {"chkVerify", "cmdPresent"})
            require(window.findChild<QWidget*>(control)->isVisible() == OPERATES_SERVICE, "the edition's controls");
        std::puts("The unit holds the image.");
        std::fflush(stdout);
        press(window, "cmdEnd");
        require(false, "the end of the program");
    }

    const units::Bytes image_ = units::makeImage("AMPKEY", 13500, 1);
    units::Simulator units_{[] {
        units::Options options;
        // The first start character may arrive with the reply before it and be discarded with it.
        options.timing.startInterval = std::chrono::milliseconds(50);
        return options;
    }()};
    bool succeeded_ = false;
};

static void sitDown() {
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const QByteArray folder = QCoreApplication::applicationDirPath().toLocal8Bit();
    // The other edition runs at the same time. A lock needs a folder that is closed to others.
    require(::chmod(folder.constData(), 0700) == 0, "a folder of the program's");
    qputenv("XDG_RUNTIME_DIR", folder);
    static Operator theOperator;
}
Q_COREAPP_STARTUP_FUNCTION(sitDown)
