/// File dialog of the main window, for loading and saving.
#include "system/program_folder.h"
#include "text/form_texts.h"
#include "upgrade/main_window.h"

/// Path of the file that the operator chooses, beginning with `preset`; empty when the dialog is cancelled.
QString frmMain::chooseFile(QFileDialog::AcceptMode mode, const QString& preset) {
    QFileDialog cmdSoft(this, QString(), programFolder());
    cmdSoft.setAcceptMode(mode);
    cmdSoft.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    cmdSoft.setNameFilter(gFilterText.section(QLatin1Char('|'), 0, 0));
    if (mode == QFileDialog::AcceptSave)
        cmdSoft.setDefaultSuffix(QStringLiteral("bin"));
    if (!preset.isEmpty())
        cmdSoft.selectFile(preset);
    return cmdSoft.exec() == QDialog::Accepted ? cmdSoft.selectedFiles().constFirst() : QString();
}
