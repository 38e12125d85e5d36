/// An INI file of any content. First line of the input: the section, second: the key, then the file.
#include "app/ini_file.h"
#include "app/numbers.h"
#include "support/input.h"
#include "support/require.h"
#include "text/runtime_failure.h"

#include <cmath>

static bool isTrimmed(const QString& text) {
    return !text.startsWith(QLatin1Char(' ')) && !text.endsWith(QLatin1Char(' '));
}

static void checkValue(const QString& value, const QByteArray& file) {
    require(value.size() <= 126 && isTrimmed(value), "a value has at most 126 characters, none of them blank ends");
    for (const char c : {'\'', '\t', '\n', '\r'})
        require(!value.contains(QLatin1Char(c)), "a value holds no remark, tab or line break");
    require(iniText(file).replace(QLatin1Char('\t'), QLatin1Char(' ')).contains(value), "a value stands in the file");
}

static void checkList(QString value) {
    const int items = fncSplitList(value);
    require(items == gListItems.size() && items == std::min<qsizetype>(101, value.count(QLatin1Char(',')) + 1),
            "a list has an item more than commas, and 101 at most");
    for (const QString& item : gListItems)
        require(isTrimmed(item) && !item.contains(QLatin1Char(',')), "an item is trimmed and holds no comma");
}

static void checkNumber(const QString& text) {
    const double value = leadingNumber(text);
    require(!std::isnan(value), "every text has a number");
    require(leadingNumber(text + QLatin1Char('z')) == value, "what follows the number does not count");
    try {
        require(std::abs(toInt32(value) - value) <= 0.5, "a number goes to the nearest whole number");
        require(toInt16(value) == toInt32(value), "and to the same one in 16 bits");
    } catch (const RuntimeFailure& f) {
        require(f.number() == failure::kOverflow && std::abs(value) > 32767, "only what has no place overflows");
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    const QString section = QString::fromStdString(input.upTo('\n'));
    const QString key = QString::fromStdString(input.upTo('\n'));
    const auto file = QByteArray::fromStdString(input.rest());

    const QString value = iniValue(storedValue(file, section, key));
    checkValue(value, file);
    checkList(value);
    for (const QString& item : gListItems)
        checkNumber(item);
    return 0;
}
