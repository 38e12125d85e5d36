/// The information block of an image and the type tables: version word (2 bytes), type key (16 bytes), then the
/// `TYPE.INI` that is there. A unit reports the same word and key.
#include "upgrade/image_info.h"
#include "app/ini_file.h"
#include "app/numbers.h"
#include "app/type_tables.h"
#include "support/input.h"
#include "support/program.h"
#include "support/require.h"
#include "text/blanks.h"
#include "text/runtime_failure.h"
#include "transfer/image_buffers.h"
#include "upgrade/image_loading.h"

#include <QRegularExpression>

#include <cmath>

static void requireKnown(const RuntimeFailure& f) {
    require(f.number() == failure::kSubscript || f.number() == failure::kOverflow, "the failure is a known one");
}

static void checkImage() {
    static const QRegularExpression version(QStringLiteral("\\A[0-9]{1,2}\\.[0-9]{3}\\z"));
    try {
        subTakeImageInfo();
    } catch (const RuntimeFailure& f) {
        requireKnown(f);
        require(gFileTypeName.isEmpty(), "an image that no range has been found for has no name");
    }
    require(version.match(gFileVersion).hasMatch(), "the version is written as 0.000");
    require(gFileTypeName.size() <= 126, "the name is a value of the file");
}

/// Whether the entry that was looked up last has a range from item `base` on that gives `name` and `offset`.
static bool isRange(qsizetype base, std::int32_t number, const QString& name, std::int32_t offset) {
    return gListItems.size() > base + 1 && gListItems[base + 1] == name &&
           std::abs(number - leadingNumber(gListItems[base]) - offset) <= 0.5;
}

static void checkUnit(const QString& kind, std::int32_t number) {
    QString name;
    std::int32_t offset = 0;
    try {
        const bool found = fncGetAmpType(kind, number, name, offset);
        require(found || (name.isEmpty() && offset == 0), "without a range there is neither name nor version");
        require(!found || isRange(0, number, name, offset) || isRange(3, number, name, offset),
                "name and version are those of a range of the entry");
        require(offset >= 0 && offset <= 9999, "a version lies between 0.000 and 9.999");
    } catch (const RuntimeFailure& f) {
        requireKnown(f);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    const QByteArray versionWord = QByteArray::fromStdString(input.bytes(2)).leftJustified(2, '\0');
    const QByteArray typeKey = QByteArray::fromStdString(input.bytes(16)).leftJustified(16, '\0');
    writeProgramFile(QStringLiteral("TYPE.INI"), QByteArray::fromStdString(input.rest()));
    // The other bytes of the image mean nothing.
    gImageBuf.fill('\xEE', kImageSize + 1);
    gImageBuf.replace(0x3BF05, 2, versionWord);
    gImageBuf.replace(0x3BF10, 16, typeKey);
    const int word = static_cast<unsigned char>(versionWord[0]) + 256 * static_cast<unsigned char>(versionWord[1]);

    gBoxes = 0;
    const QString wordText = fncGetImageInfo(kImageVersionWord);
    require(wordText == (word <= 32767 ? QString::number(word) : QString()), "the version word is 0 to 32767");
    require(gBoxes == (word <= 32767 ? 0 : 1), "any other is reported once");
    const QString key = trimBlanks(QString::fromLatin1(typeKey));
    require(fncGetImageInfo(kImageTypeKey) == key, "the type key is its 16 bytes");
    checkImage();
    checkUnit(key, word);
    return 0;
}
