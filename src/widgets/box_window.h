/// Message boxes as windows.
#pragma once

#include "text/message_box.h"

/// Shows `message`, modal, centred on the window that is in use, and waits for the answer.
///
/// Escape and the close box mean Cancel where that button is there, else OK. main() hands this to setMessageBoxes().
MsgBoxResult showBoxWindow(const MessageBox& message);
