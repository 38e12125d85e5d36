/// Message boxes: a catalogue message with an insert, or any text. What shows them is set from above.
#pragma once

#include <QString>

#include <functional>

/// Buttons and icon of a message box; one of the buttons and one of the icons are added.
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

/// The title of every message box whose place names no other.
inline constexpr char16_t kMsgBoxTitle[] = u"Dravolt";

/// One message box: plain text, in lines.
struct MessageBox {
    QString text;
    int style;  ///< sum of MsgBoxStyle values
    QString title;
};

/// Sets what shows the boxes of the program and gives the operator's answer; main() sets windows, tests what they like.
///
/// Until then a message goes to standard error, and its answer is OK.
void setMessageBoxes(std::function<MsgBoxResult(const MessageBox&)> show);

/// Shows `message`, in which CR LF is a line break, and waits for the answer.
/// @param style  sum of MsgBoxStyle values
MsgBoxResult showMessageBox(const QString& message, int style, const QString& title = QString::fromUtf16(kMsgBoxTitle));

/// Shows the catalogue message `id` (without language offset), composed with `insert` where that message takes one.
///
/// Never fails: a failure of its own, such as an identifier without an entry, is shown in a box and gives kBoxFailed.
MsgBoxResult fncMsgBox(int id, int style, const QString& insert = {});
