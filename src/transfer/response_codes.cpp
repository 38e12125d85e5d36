#include "transfer/response_codes.h"

#include <algorithm>
#include <iterator>

namespace {

struct ResponseCode {
    QLatin1String code;
    int resultNo;
};

constexpr ResponseCode kResponseCodes[] = {
    {QLatin1String("0000"), kResultSuccess},
    {QLatin1String("0101"), 9},
    {QLatin1String("9000"), 10},
    {QLatin1String("9998"), 11},
    {QLatin1String("9999"), 12},
    {QLatin1String("1001"), 13},
    {QLatin1String("1002"), 14},
    {QLatin1String("1004"), 15},
    {QLatin1String("1101"), 16},
    {QLatin1String("1103"), 17},
    {QLatin1String("1104"), 18},
    {QLatin1String("2203"), 19},
    {QLatin1String("2204"), 20},
    {QLatin1String("2205"), 21},
    {QLatin1String("1111"), 22},
    {QLatin1String("1234"), 23},
    {QLatin1String("2222"), 24},
    {QLatin1String("3333"), 25},
    {QLatin1String("4444"), 26},
    {QLatin1String("5555"), 27},
};

constexpr int kUnknownCode = 8;

}  // namespace

int fncResultNo(const QString& code) {
    const auto known = std::find_if(std::begin(kResponseCodes), std::end(kResponseCodes),
                                    [&code](const ResponseCode& entry) { return entry.code == code; });
    return known == std::end(kResponseCodes) ? kUnknownCode : known->resultNo;
}
