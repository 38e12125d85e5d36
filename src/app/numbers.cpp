#include "app/numbers.h"

#include "system/runtime_failure.h"
#include "text/characters.h"
#include "text/string_table.h"

#include <QRegularExpression>

#include <cmath>
#include <limits>

/// Leading number of a text without blanks.
static QRegularExpressionMatch matchNumber(const QString& text) {
    static const QRegularExpression number(
        QStringLiteral("^(?:&[Hh](?<hex>[0-9A-Fa-f]+)|[+-]?(?:[0-9]+\\.?[0-9]*|\\.[0-9]+)(?:[EeDd][+-]?[0-9]+)?)"));
    return number.match(text);
}

static double valueOf(const QRegularExpressionMatch& match) {
    const QString hex = match.captured(QStringLiteral("hex"));
    if (!hex.isEmpty())
        return std::strtod(("0x" + hex.toLatin1()).constData(), nullptr);
    return match.captured().replace(QLatin1Char('D'), QLatin1Char('E'), Qt::CaseInsensitive).toDouble();
}

double leadingNumber(const QString& text) {
    const QRegularExpressionMatch match = matchNumber(QString(text).remove(QLatin1Char(' ')));
    return match.hasMatch() ? valueOf(match) : 0;
}

std::optional<double> wholeNumber(const QString& text) {
    const QString trimmed = trimBlanks(text);
    const QRegularExpressionMatch match = matchNumber(trimmed);
    if (!match.hasMatch() || match.capturedLength() != trimmed.size())
        return std::nullopt;
    return valueOf(match);
}

template <typename Integer>
static Integer rounded(double value) {
    constexpr int kWholeDigits = 15;  // integers that a double holds exactly are shown in full
    const double nearest = std::nearbyint(value);
    if (!(nearest >= std::numeric_limits<Integer>::min() && nearest <= std::numeric_limits<Integer>::max()))
        throw RuntimeFailure(
            failure::kOverflow,
            textByOffset({u"Overflow: %1 is not between %2 and %3", u"オーバーフロー: %1 は %2～%3 の範囲にありません"})
                .arg(QString::number(value, 'g', kWholeDigits), QString::number(std::numeric_limits<Integer>::min()),
                     QString::number(std::numeric_limits<Integer>::max())));
    return static_cast<Integer>(nearest);
}

std::int16_t toInt16(double value) { return rounded<std::int16_t>(value); }

std::int32_t toInt32(double value) { return rounded<std::int32_t>(value); }

QString versionText(int thousandths) {
    return QStringLiteral("%1.%2").arg(thousandths / 1000).arg(thousandths % 1000, 3, 10, QLatin1Char('0'));
}
