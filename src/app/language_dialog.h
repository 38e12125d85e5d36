/// Lets the operator choose the language for the rest of the run; shown modally by the settings reader only.
///
/// It uses the language in gLanguage when it is created. Only "OK" changes gLanguage.
#pragma once

#include <QDialog>

#include <array>

class QRadioButton;

class frmLanguage : public QDialog {
public:
    frmLanguage();

private:
    void cmdOK_Click();

    /// Indexed by the value for gLanguage.
    std::array<QRadioButton*, 2> optLanguage{};
};
