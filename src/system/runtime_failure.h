/// The one shape of a run-time failure.
#pragma once

#include <QString>

#include <exception>

/// A failure with a number and a description that an operator can act on: what failed, where, and what helps.
///
/// It is thrown where the failure happens and reported where the operation traps it; results that a caller branches on
/// are return values instead.
class RuntimeFailure : public std::exception {
public:
    RuntimeFailure(int number, const QString& description)
        : number_(number), description_(description), what_(description.toUtf8()) {}

    int number() const { return number_; }
    const QString& description() const { return description_; }
    const char* what() const noexcept override { return what_.constData(); }

private:
    int number_;
    QString description_;
    QByteArray what_;
};

/// Numbers of the failures that some place tells apart or shows.
namespace failure {
inline constexpr int kOverflow = 6;
inline constexpr int kSubscript = 9;
inline constexpr int kTypeMismatch = 13;
inline constexpr int kDeviceIo = 57;
inline constexpr int kFileAccess = 75;
inline constexpr int kNoSuchText = 326;
inline constexpr int kInvalidProperty = 380;
inline constexpr int kInvalidPort = 8002;
inline constexpr int kPortOpen = 8005;
inline constexpr int kPortNotOpen = 8018;
}  // namespace failure
