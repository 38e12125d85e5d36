/// An INI file of any content. First line of the input: the section, second: the key, then the file.
#include "app/ini_file.h"
#include "app/numbers.h"
#include "app/settings.h"
#include "support/input.h"
#include "support/program.h"
#include "support/require.h"
#include "text/runtime_failure.h"
#include "text/string_table.h"

#include <cmath>
#include <limits>

static bool isTrimmed(const QString& text) {
    return !text.startsWith(QLatin1Char(' ')) && !text.endsWith(QLatin1Char(' '));
}

static QString withoutBlanks(QString text) { return text.remove(QLatin1Char(' ')); }

static void checkValue(const QString& value, const QByteArray& file) {
    require(value.size() <= 126, "a value has at most 126 characters");
    require(isTrimmed(value), "a value has no blanks at its ends");
    for (const char c : {'\'', '\t', '\n', '\r'})
        require(!value.contains(QLatin1Char(c)), "a value holds no remark, tab or line break");
    require(iniText(file).replace(QLatin1Char('\t'), QLatin1Char(' ')).contains(value), "a value stands in the file");
}

static void checkList(QString value) {
    const int items = fncSplitList(value);
    require(items == gListItems.size() && items >= 1 && items <= 101, "a list has 1 to 101 items");
    for (const QString& item : gListItems)
        require(isTrimmed(item) && !item.contains(QLatin1Char(',')), "an item is trimmed and holds no comma");
    const QString joined = withoutBlanks(gListItems.join(QLatin1Char(',')));
    require(items == 101 ? withoutBlanks(value).startsWith(joined) : withoutBlanks(value) == joined,
            "the items are what the list is made of");
}

/// Checks the conversion of `value` to `Integer`, or that it has no place there.
template <typename Integer>
static void checkRounding(Integer (*convert)(double), double value) {
    using Limits = std::numeric_limits<Integer>;
    try {
        const Integer nearest = convert(value);
        require(std::abs(nearest - value) <= 0.5, "a number goes to the nearest whole number");
        require(std::abs(nearest - value) < 0.5 || nearest % 2 == 0, "halves go to the even one");
    } catch (const RuntimeFailure& f) {
        require(f.number() == failure::kOverflow, "the failure is an overflow");
        require(value < Limits::min() || value >= Limits::max() + 0.5, "only what has no place overflows");
    }
}

static void checkNumber(const QString& text) {
    const double value = leadingNumber(text);
    require(!std::isnan(value), "every text has a number");
    require(leadingNumber(text + QLatin1Char('z')) == value, "what follows the number does not count");
    require(!isNumeric(text + QLatin1Char('z')), "a text with something behind the number is none");
    require(leadingNumber(QLatin1Char(' ') + text) == value, "blanks do not count");
    bool plain = false;
    const double read = withoutBlanks(text).toDouble(&plain);
    require(!plain || !isNumeric(text) || read == value, "a decimal number has the value that it is written with");
    checkRounding(toInt16, value);
    checkRounding(toInt32, value);
}

/// Reads `file` as the settings; a language stands before it, since a file without one asks the operator.
static void checkSettings(const QByteArray& file) {
    const QByteArray settings = "[OPERATION]\nLanguage = E\n" + file;
    const QString path = writeProgramFile(QStringLiteral("Setting.INI"), settings);
    gBoxes = 0;
    const bool read = fncReadSetting();
    const QString port = fncGetIniString(QStringLiteral("ifu"), QStringLiteral("com"), path);
    require(gBoxes == (read ? 0 : 1), "a failure is reported once");
    require(gLanguage == 1 && gBaudRate == QLatin1String("38400"), "the first language holds, and the one speed");
    if (read && isNumeric(port))
        require(std::abs(gComPort - leadingNumber(port)) <= 0.5, "the port is the number in the file");
    else
        require(gComPort == 1, "without a number the port is 1");
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    const QString section = QString::fromStdString(input.line());
    const QString key = QString::fromStdString(input.line());
    const auto file = QByteArray::fromStdString(input.rest());

    const QString value = iniValue(storedValue(file, section, key));
    checkValue(value, file);
    checkList(value);
    checkNumber(value);
    for (const QString& item : gListItems)
        checkNumber(item);
    checkSettings(file);
    return 0;
}
