/// File dialog of the main window, for loading and saving.
#pragma once

#include <QFileDialog>

/// Lets the operator choose a file, starting with `preset` in the program's folder. The file need not exist.
///
/// Modal to `owner`. When saving, asks before replacing a file, and adds the suffix "bin" where there is none.
/// @return the path; empty if cancelled
QString chooseFile(QWidget& owner, QFileDialog::AcceptMode mode, const QString& preset);
