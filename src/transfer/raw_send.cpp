#include "transfer/raw_send.h"

#include "link/com_port.h"
#include "text/message_box.h"
#include "text/runtime_failure.h"
#include "transfer/response_codes.h"

int fncSendRaw(const QByteArray& bytes) {
    try {
        boundPort().discardInput();
        boundPort().output(bytes);
        return kResultSuccess;
    } catch (const RuntimeFailure& f) {
        showMessageBox(f.description(), kCritical, QStringLiteral("エラー"));
        return f.number();
    }
}
