#include "system/program_folder.h"

#include <QDir>

static QString& folderInUse() {
    static QString folder;
    return folder;
}

QString programFile(const QString& name) { return QDir(folderInUse()).filePath(name); }

QString programFolder() { return folderInUse(); }

void setProgramFolder(const QString& folder) { folderInUse() = QDir::cleanPath(folder); }
