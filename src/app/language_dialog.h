/// Lets the operator choose the language for the rest of the run; shown modally by the settings reader only.
///
/// It speaks the language that gLanguage holds when it is made. Only "OK" changes gLanguage.
#pragma once

#include <QDialog>

#include <array>

class QRadioButton;

class frmLanguage : public QDialog {
public:
    frmLanguage();

private:
    void cmdOK_Click();

    /// The element number is the value that it stands for in gLanguage.
    std::array<QRadioButton*, 2> optLanguage{};
};
