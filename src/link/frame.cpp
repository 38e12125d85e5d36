#include "link/frame.h"

#include "link/protocol_words.h"
#include "system/runtime_failure.h"
#include "text/string_table.h"

#include <array>
#include <charconv>
#include <numeric>
#include <optional>

static constexpr int kNodeAndSubAddress = 4;
static constexpr int kEndCodeLast = 6;
static constexpr int kDataFirst = 15;

QByteArray buildRequestFrame(const QString& command) {
    const QByteArray body = "00000" + command.toUpper().toLatin1() + kEtx;
    const char check =
        std::accumulate(body.begin(), body.end(), char{0}, [](char sum, char c) { return static_cast<char>(sum ^ c); });
    return kStx + body + check;
}

/// The byte that two hexadecimal digits of either case stand for, if they are such.
static std::optional<char> byteOf(char high, char low) {
    const std::array<char, 2> pair{high, low};
    unsigned char byte = 0;
    const auto [end, error] = std::from_chars(pair.data(), pair.data() + pair.size(), byte, 16);
    if (error != std::errc{} || end != pair.data() + pair.size())
        return std::nullopt;
    return static_cast<char>(byte);
}

ReplyParser::ReplyParser(bool raw, QByteArray& data) : raw_(raw), data_(data) {
    data_ = QByteArray(kReplyCapacity, '\0');
}

bool ReplyParser::take(char byte) {
    if (startSeen_ && endSeen_) {
        takeCheckByte(byte);
        return true;
    }
    if (byte == kStx) {
        startSeen_ = true;
        return false;
    }
    check_ = static_cast<char>(check_ ^ byte);
    if (byte == kEtx)
        endSeen_ = true;
    else
        takeText(byte);
    return false;
}

void ReplyParser::takeText(char byte) {
    ++count_;
    if (count_ <= kNodeAndSubAddress)
        return;
    if (count_ <= kEndCodeLast)
        endCode_ += QLatin1Char(byte);
    else if (raw_ && count_ >= kDataFirst)
        store(byte);
    else
        takePair(byte);
}

void ReplyParser::takePair(char byte) {
    if (count_ % 2 != 0) {
        pendingDigit_ = byte;
        return;
    }
    const std::optional<char> value = byteOf(pendingDigit_, byte);
    if (!value)
        throw RuntimeFailure(failure::kTypeMismatch,
                             textByOffset({u"The reply is damaged: characters %1 and %2 are not a hexadecimal pair",
                                           u"応答が壊れています: %1文字目と%2文字目が16進数ではありません"})
                                 .arg(count_ - 1)
                                 .arg(count_));
    store(*value);
}

void ReplyParser::store(char byte) {
    if (stored_ == kReplyCapacity)
        throw RuntimeFailure(failure::kSubscript,
                             textByOffset({u"The reply carries more than %1 bytes", u"応答が%1バイトを超えています"})
                                 .arg(kReplyCapacity));
    data_[stored_++] = byte;
}

void ReplyParser::takeCheckByte(char byte) {
    if (endCode_ == QLatin1String("11"))
        return;
    data_.truncate(stored_);
    checkReceived_ = true;
    checkMismatch_ = byte != check_;
    if (checkMismatch_ || !carriesResponse())
        return;
    if (stored_ < 4)
        throw RuntimeFailure(failure::kSubscript, textByOffset({u"The reply is too short: it carries no response code",
                                                                u"応答が短すぎます: レスポンスコードがありません"}));
    responseCode_ = QString::fromLatin1(data_.mid(2, 2).toHex().toUpper());
}

bool ReplyParser::carriesResponse() const { return endCode_ == QLatin1String("00") || endCode_ == QLatin1String("0F"); }

QString ReplyParser::result() const {
    if (carriesResponse())
        return responseCode_;
    return endCode_.isEmpty() ? kNoReply : QStringLiteral("90") + endCode_;
}

static QLatin1String flag(bool value) { return QLatin1String(value ? "True" : "False"); }

QString ReplyParser::logRecord() const {
    QString record = QStringLiteral("[NG2] S:%1 E:%2 B:%3 P:%4 U:%5 A:")
                         .arg(flag(startSeen_), flag(endSeen_), flag(checkReceived_), flag(checkMismatch_))
                         .arg(data_.size() - 1);
    const QByteArray stored = data_.left(stored_).toHex(' ').toUpper();
    if (!stored.isEmpty())
        record += QString::fromLatin1(stored) + QLatin1Char(' ');
    return record;
}
