/// Message boxes as windows.
#pragma once

#include "text/message_box.h"

/// Shows `message`, modal, centred on the active window, and waits for the answer.
///
/// Escape and the close box mean Cancel if there is such a button, else OK. main() passes this to setMessageBoxes().
MsgBoxResult showBoxWindow(const MessageBox& message);
