#include "transfer/communication_check.h"

#include "link/device_commands.h"

int fncCheckSensorComm() {
    constexpr int kNoNumber = 8;
    QByteArray reply;
    const QString code = fncSendTextCommand(QStringLiteral("0101D40001000001"), reply);
    bool isNumber = false;
    const int number = code.toInt(&isNumber);
    return isNumber ? number : kNoNumber;
}
