#include "upgrade/file_dialog.h"

#include "system/program_folder.h"
#include "widgets/form_texts.h"

#include <QHeaderView>
#include <QSettings>
#include <QSplitter>
#include <QTreeView>

/// Qt's dialog would truncate the names of its places and columns.
static void makeRoom(QFileDialog& dialog) {
    constexpr int kPlaces = 120;
    dialog.resize(720, 460);
    if (auto* splitter = dialog.findChild<QSplitter*>())
        splitter->setSizes({kPlaces, dialog.width() - kPlaces});
    if (auto* files = dialog.findChild<QTreeView*>())
        files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
}

/// Qt's dialog saves its recent folders in the user's settings; this program writes only its own files.
static void keepNoHistory() {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("/dev/null"));
}

QString chooseFile(QWidget& owner, QFileDialog::AcceptMode mode, const QString& preset) {
    keepNoHistory();
    QFileDialog cmdSoft(&owner, QString(), programFolder());
    cmdSoft.setAcceptMode(mode);
    // A file that does not exist is reported by the load, not by the dialog.
    cmdSoft.setFileMode(QFileDialog::AnyFile);
    cmdSoft.setNameFilter(gFilterText.section(QLatin1Char('|'), 0, 0));
    if (mode == QFileDialog::AcceptSave)
        cmdSoft.setDefaultSuffix(QStringLiteral("bin"));
    makeRoom(cmdSoft);
    if (!preset.isEmpty())
        cmdSoft.selectFile(preset);
    return cmdSoft.exec() == QDialog::Accepted ? cmdSoft.selectedFiles().constFirst() : QString();
}
