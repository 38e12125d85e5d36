/// The type tables. First line of the input: what a unit reports as its key, second: its number, then `TYPE.INI`.
#include "app/type_tables.h"
#include "app/ini_file.h"
#include "app/numbers.h"
#include "support/input.h"
#include "support/program.h"
#include "support/require.h"
#include "text/runtime_failure.h"

#include <cmath>

/// Whether the entry that was looked up last has a range from item `base` on that gives `name` and `offset`.
static bool isRange(qsizetype base, std::int32_t number, const QString& name, std::int32_t offset) {
    return gListItems.size() > base + 1 && gListItems[base + 1] == name &&
           std::abs(number - leadingNumber(gListItems[base]) - offset) <= 0.5;
}

/// Whether `number` lies in the range from item `base` on.
static bool liesIn(qsizetype base, std::int32_t number) {
    const double offset = gListItems.size() > base + 1 ? number - leadingNumber(gListItems[base]) : -1;
    return offset >= 0 && offset <= 9999;
}

static void checkAmplifier(const QString& kind, std::int32_t number) {
    constexpr std::int32_t kUntouched = -7;
    QString name = QStringLiteral("untouched");
    std::int32_t offset = kUntouched;
    try {
        if (fncGetAmpType(kind, number, name, offset)) {
            require(offset >= 0 && offset <= 9999, "a version lies between 0.000 and 9.999");
            require(isRange(0, number, name, offset) || isRange(3, number, name, offset),
                    "name and version are those of a range of the entry");
            require(versionText(offset).size() == 5, "a version is written with five characters");
        } else {
            require((name.isEmpty() && offset == 0) || (name == QLatin1String("untouched") && offset == kUntouched),
                    "without a range the results are empty, without an entry untouched");
            require(!name.isEmpty() || (!liesIn(0, number) && !liesIn(3, number)), "a range that fits is found");
        }
    } catch (const RuntimeFailure& f) {
        require(f.number() == failure::kSubscript || f.number() == failure::kOverflow, "the failure is a known one");
    }
}

static void checkInterfaceUnit(const QString& key, const QString& file) {
    for (const char* section : {"IFU_TYPE", "IFU_BIN_TYPE"}) {
        const QString text = fncGetIfuDefine(key, QLatin1String(section));
        require(text == fncGetIfuDefine(QStringLiteral("  ") + key + QLatin1Char(' '), QLatin1String(section)),
                "blanks around a key do not count");
        require(file.contains(text), "a type text stands in the file");
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    const QString key = QString::fromStdString(input.line());
    const std::int32_t number = QByteArray::fromStdString(input.line()).toInt();
    const auto file = QByteArray::fromStdString(input.rest());
    writeProgramFile(QStringLiteral("TYPE.INI"), file);
    gBoxes = 0;
    checkAmplifier(key, number);
    checkInterfaceUnit(key, iniText(file).replace(QLatin1Char('\t'), QLatin1Char(' ')));
    require(gBoxes == 0, "no content of the file is a failure of reading it");
    return 0;
}
