/// An INI file of any content. First line of the input: the section, second: the key, then the file.
#include "app/ini_file.h"
#include "app/numbers.h"
#include "support/input.h"
#include "system/runtime_failure.h"

#include <QStringList>

#include <cmath>

static void checkNumber(const QString& text) {
    const double value = leadingNumber(text);
    require(!std::isnan(value), "every text has a number");
    try {
        require(std::abs(toInt32(value) - value) <= 0.5, "a number goes to the nearest whole number");
        require(toInt16(value) == toInt32(value), "and to the same one in 16 bits");
    } catch (const RuntimeFailure& f) {
        require(f.number() == failure::kOverflow, "a number that has no place overflows");
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    const QString section = QString::fromStdString(input.upTo('\n'));
    const QString key = QString::fromStdString(input.upTo('\n'));
    const auto file = QByteArray::fromStdString(input.rest());

    QString value = iniValue(storedValue(file, section, key));
    require(value.size() <= 126, "a value has at most 126 characters");
    for (const char c : {'\'', '\t', '\n', '\r'})
        require(!value.contains(QLatin1Char(c)), "a value holds no remark, tab or line break");
    require(fncSplitList(value) == gListItems.size(), "the number of items is said");
    require(gListItems.size() <= 101, "a list has 101 items at most");
    for (const QString& item : gListItems) {
        require(!item.startsWith(QLatin1Char(' ')) && !item.endsWith(QLatin1Char(' ')), "an item is trimmed");
        checkNumber(item);
    }
    return 0;
}
