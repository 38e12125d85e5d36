/// File dialog of the main window, for loading and saving.
#pragma once

#include <QFileDialog>

/// Lets the operator choose a file, beginning with `preset` in the program's folder. The file need not exist.
///
/// Modal on `owner`. Asks before an existing file is chosen for saving, and gives such a file the suffix "bin" if it
/// has none.
/// @return the path; empty when the dialog is cancelled
QString chooseFile(QWidget& owner, QFileDialog::AcceptMode mode, const QString& preset);
