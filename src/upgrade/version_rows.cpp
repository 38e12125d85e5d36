/// Version display and target choice of the main window.
#include "app/identification.h"
#include "link/device_commands.h"
#include "text/error_report.h"
#include "upgrade/image_loading.h"
#include "upgrade/main_window.h"
#include "version.h"

#include <QCheckBox>
#include <QRadioButton>

/// Text of a program version: 1, 4 gives ver1.004.
static QString programVersionText(int major, int minor) {
    return QStringLiteral("ver%1.%2").arg(major).arg(minor, 3, 10, QLatin1Char('0'));
}

void frmMain::subSetAllVersion() {
    runTrapped([this] {
        setWindowTitle(QStringLiteral("Dravolt ") + programVersionText(kProgramMajor, kProgramMinor));
        const std::array<QString, 3> names{gAmpTypeName, gIfuTypeName, gFileTypeName};
        const std::array<QString, 3> versions{gAmpVersion, gIfuVersion, gFileVersion};
        for (std::size_t row = 0; row < lblTitle.size(); ++row) {
            lblTitle[row]->setText(names[row]);
            lblVersion[row]->setText(names[row].isEmpty() ? QString() : versions[row]);
        }
    });
}

/// The chosen unit and the image are written normally, the other unit in grey.
void frmMain::optPresent_Click(int index) {
    runTrapped([this, index] {
        gUnitNo = index == 1 ? kInterfaceUnit : kSensorAmplifier;
        for (int row = 0; row <= kImageRow; ++row) {
            const bool grey = row != index && row != kImageRow;
            lblTitle[static_cast<std::size_t>(row)]->setGrey(grey);
            lblVersion[static_cast<std::size_t>(row)]->setGrey(grey);
        }
    });
}

TransferJob frmMain::chosenJob() const {
    return {.unit = optPresent[0]->isChecked() ? kSensorAmplifier : kInterfaceUnit,
            .verificationTicked = chkVerify->isChecked()};
}

void frmMain::showWrittenVersion(int unit) {
    const QString written = lblVersion[kImageRow]->text();
    lblVersion[rowOf(unit)]->setText(written);
    // The unit's version is this one from now on: the next refresh of the rows must not bring the old one back.
    (unit == kSensorAmplifier ? gAmpVersion : gIfuVersion) = written;
}
