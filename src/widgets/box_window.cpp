#include "widgets/box_window.h"

#include "text/string_table.h"
#include "widgets/centring.h"

#include <QApplication>
#include <QFontMetrics>
#include <QGridLayout>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

/// The parent of a box: the active window, otherwise any visible one.
static QWidget* ownerWindow() {
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget* active = QApplication::activeWindow())
        return active;
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto visible = std::find_if(windows.begin(), windows.end(), [](const QWidget* w) {
        return w->isVisible() && (w->windowType() == Qt::Window || w->windowType() == Qt::Dialog);
    });
    return visible == windows.end() ? nullptr : *visible;
}

static QMessageBox::Icon iconOf(int style) {
    switch (style & 0xF0) {
    case kCritical:
        return QMessageBox::Critical;
    case kQuestion:
        return QMessageBox::Question;
    case kExclamation:
        return QMessageBox::Warning;
    case kInformation:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

/// Width of the longest of `lines`, or of the equal parts into which it must be wrapped.
static int textWidth(const QFontMetrics& metrics, const QStringList& lines) {
    constexpr int kWidest = 620;
    constexpr int kRoomForUnevenParts = 40;
    int longest = 0;
    for (const QString& line : lines)
        longest = std::max(longest, metrics.horizontalAdvance(line));
    const int parts = longest / kWidest + 1;
    return parts == 1 ? longest : longest / parts + kRoomForUnevenParts;
}

/// Makes `box` wide enough for its title, even above a short message, and for evenly wrapped lines.
static void makeRoom(QMessageBox& box) {
    constexpr int kFrameAndCloseBox = 120;
    constexpr int kIconAndMargins = 100;
    const QFontMetrics metrics(box.font());
    const int titleRoom = metrics.horizontalAdvance(box.windowTitle()) * 3 / 2 + kFrameAndCloseBox;
    const int textRoom = textWidth(metrics, box.text().split(QLatin1Char('\n'))) + kIconAndMargins;
    auto* grid = qobject_cast<QGridLayout*>(box.layout());
    grid->addItem(new QSpacerItem(std::max(titleRoom, textRoom), 0), grid->rowCount(), 0, 1, grid->columnCount());
}

MsgBoxResult showBoxWindow(const MessageBox& message) {
    QMessageBox box(ownerWindow());
    box.setWindowTitle(message.title);
    box.setIcon(iconOf(message.style));
    box.setTextFormat(Qt::PlainText);
    box.setText(message.text);
    QPushButton* ok = box.addButton(QMessageBox::Ok);
    ok->setText(text(IDS_FRMLANG_CMD_OK));
    box.setEscapeButton(ok);
    if ((message.style & kOkCancel) != 0) {
        QPushButton* cancel = box.addButton(QMessageBox::Cancel);
        cancel->setText(text(IDS_FRMWAIT_CMD_CANCEL));
        box.setEscapeButton(cancel);
    }
    makeRoom(box);
    if (box.parentWidget() == nullptr)
        centreOnScreen(box);
    return box.exec() == QMessageBox::Ok ? kOk : kCancel;
}
