#include "link/ms_comm.h"

#include "link/waits.h"
#include "system/runtime_failure.h"
#include "text/string_table.h"

#include <algorithm>
#include <utility>

RuntimeFailure portFailure(int number, const QString& port, const char* doing, int error, const QString& remedy) {
    QString cause = qt_error_string(error);
    // Windows ends it with a full stop.
    while (cause.endsWith(QLatin1Char('.')) || cause.endsWith(QChar(u'。')) || cause.endsWith(QLatin1Char(' ')))
        cause.chop(1);
    return {number, QStringLiteral("%1: %2: %3%4").arg(port, QLatin1String(doing), cause, remedy)};
}

namespace remedy {

QString inUse() {
    return textByOffset({u"; another program uses the port", u"。他のプログラムがポートを使用しています"});
}

QString gone() {
    return textByOffset({u"; the adapter is unplugged, or there is no device behind the port",
                         u"。アダプターが抜けているか、ポートにデバイスがありません"});
}

QString notSerial() { return textByOffset({u"; not a serial port", u"。シリアルポートではありません"}); }

QString noData() {
    return textByOffset({u"; the unit or adapter takes no data: check cable and power",
                         u"。データを送信できません。ケーブルと電源を確認してください"});
}

QString line() {
    return textByOffset(
        {u"; the port cannot be set to 38400 bit/s, 8N1: plug the adapter in again, or use another",
         u"。ポートを 38400 bps、8N1 に設定できません。アダプターを差し直すか、別のアダプターを使用してください"});
}

}  // namespace remedy

void MSComm::open(const QString& settings) {
    if (settings != QLatin1String("38400,n,8,1"))
        throw RuntimeFailure(failure::kInvalidProperty, QStringLiteral("Line settings %1").arg(settings));
    port_ = openSerialPort(number_);
}

SerialPort& MSComm::port() const {
    if (!isOpen())
        throw RuntimeFailure(failure::kPortNotOpen,
                             textByOffset({u"COM%1 is not open", u"COM%1 は開いていません"}).arg(number_));
    return *port_;
}

QByteArray MSComm::input(qsizetype most) {
    if (most <= 0)
        return {};  // to read no bytes would look like a hang-up
    QByteArray bytes(most, Qt::Uninitialized);
    bytes.truncate(port().read(bytes.data(), most));
    return bytes;
}

std::optional<char> MSComm::inputByte() {
    char byte = '\0';
    return port().read(&byte, 1) == 1 ? std::optional(byte) : std::nullopt;
}

void MSComm::discardInput() const {
    if (isOpen())
        port_->discardInput();
}

void MSComm::discardOutput() const {
    if (isOpen())
        port_->discardOutput();
}

void MSComm::output(const QByteArray& bytes) {
    SerialPort& to = port();
    for (qsizetype sent = 0; sent < bytes.size();)
        sent += to.write(bytes.constData() + sent, bytes.size() - sent, gWaits.portWrite);
}

void MSComm::waitForInput(std::chrono::nanoseconds limit) const {
    port().waitForInput(std::max(limit, std::chrono::nanoseconds::zero()));
}

std::unique_ptr<ArrivalNotifier> MSComm::notifier(std::function<void()> arrived) const {
    return port().notifier(std::move(arrived));
}
