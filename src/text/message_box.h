/// Message boxes: a catalogue message with an insert, or any text. The function that shows them is set from above.
#pragma once

#include <QString>

#include <functional>

/// Buttons and icon of a message box: the sum of one of each.
enum MsgBoxStyle : int {
    kOkOnly = 0,
    kOkCancel = 1,
    kCritical = 16,
    kQuestion = 32,
    kExclamation = 48,
    kInformation = 64,
};

/// Answers of a message box.
enum MsgBoxResult : int { kBoxFailed = 0, kOk = 1, kCancel = 2 };

/// Default title of message boxes.
inline constexpr char16_t kMsgBoxTitle[] = u"Dravolt";

/// One message box: plain text, in lines.
struct MessageBox {
    QString text;
    int style;  ///< sum of MsgBoxStyle values
    QString title;
};

/// Sets the function that shows the boxes and returns the operator's answer.
///
/// Until then messages go to standard error and are answered with OK.
void setMessageBoxes(std::function<MsgBoxResult(const MessageBox&)> show);

/// Shows `message`, in which CR LF is a line break, and waits for the answer.
/// @param style  sum of MsgBoxStyle values
MsgBoxResult showMessageBox(const QString& message, int style, const QString& title = QString::fromUtf16(kMsgBoxTitle));

/// Shows the catalogue message `id` (without language offset), composed with `insert` where that message takes one.
///
/// Never throws: its own failures, such as an identifier without an entry, are shown in a box and give kBoxFailed.
MsgBoxResult fncMsgBox(int id, int style, const QString& insert = {});
