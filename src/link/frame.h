/// The frames on the wire: the request, and the reply byte by byte.
///
/// Pure: no port, no clock, no window.
#pragma once

#include <QByteArray>
#include <QString>

inline constexpr char kStx = 0x02;
inline constexpr char kEtx = 0x03;

/// Most bytes that one reply can carry, echoed command and response code included.
inline constexpr qsizetype kReplyCapacity = 451;

/// The frame that carries `command`: STX, node "00", sub-address "00", service "0", the text in upper case, ETX and the
/// exclusive-or of all but STX.
QByteArray buildRequestFrame(const QString& command);

/// Takes the bytes of one reply and decodes what they carry.
///
/// Reply: STX, node (2), sub-address (2), end code (2), then pairs of hexadecimal digits: echoed command (2 bytes),
/// response code (2 bytes), data; ETX, check byte.
class ReplyParser {
public:
    /// @param raw   true: each data character is one byte; false: two hexadecimal digits are one byte
    /// @param data  receives the decoded bytes; kReplyCapacity zero bytes at the start, cut to what was stored when the
    ///              check byte comes
    ReplyParser(bool raw, QByteArray& data);

    /// Takes one received byte.
    ///
    /// @return whether the reply is complete; no further byte may follow
    /// @throws RuntimeFailure  a pair is not hexadecimal, the reply is longer than kReplyCapacity, or a reply that is
    ///                         good in all else carries no response code
    bool take(char byte);

    /// "00" normal end, "0F" command error; shorter than two characters if the reply did not come so far.
    const QString& endCode() const { return endCode_; }

    /// The unit's response code, four hexadecimal digits; empty until a good check byte has come.
    const QString& responseCode() const { return responseCode_; }

    /// Whether the end code says that a response code follows.
    bool carriesResponse() const;

    /// Result of an exchange that ends now: the response code, "" for an unusable reply, "9999" for none, or "90" and
    /// the end code.
    QString result() const;

    /// Record of an unusable reply for the communication log.
    QString logRecord() const;

private:
    void takeText(char byte);
    void takePair(char byte);
    void store(char byte);
    void takeCheckByte(char byte);

    const bool raw_;
    QByteArray& data_;
    bool startSeen_ = false;
    bool endSeen_ = false;
    bool checkReceived_ = false;
    bool checkMismatch_ = false;
    int count_ = 0;          ///< characters received, without STX and ETX
    qsizetype stored_ = 0;   ///< bytes in data_ that are in use
    char pendingDigit_ = 0;  ///< first character of a pair
    char check_ = 0;         ///< exclusive-or of all received bytes but STX
    QString endCode_;
    QString responseCode_;
};
