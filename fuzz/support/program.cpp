#include "support/program.h"

#include "support/require.h"
#include "system/program_folder.h"
#include "text/message_box.h"

#include <QFile>
#include <QTemporaryDir>

int gBoxes = 0;

// Linked in the place of the real boxes.
MsgBoxResult showMessageBox(const QString& /*message*/, int /*style*/, const QString& /*title*/) {
    ++gBoxes;
    return kOk;
}

MsgBoxResult fncMsgBox(int /*id*/, int /*style*/, const QString& insert) { return showMessageBox(insert, kOkOnly, {}); }

static void makeProgramFolder() {
    static const QTemporaryDir folder;
    setProgramFolder(folder.path());
}

QString writeProgramFile(const QString& name, const QByteArray& content) {
    if (programFolder().isEmpty())
        makeProgramFolder();
    QFile file(programFile(name));
    require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
            "the program's folder is writable");
    return file.fileName();
}
