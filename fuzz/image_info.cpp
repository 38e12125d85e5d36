/// The information block of an image: version word (2 bytes), type key (16 bytes), then the `TYPE.INI` that is there.
#include "upgrade/image_info.h"
#include "support/input.h"
#include "support/program.h"
#include "support/require.h"
#include "text/blanks.h"
#include "text/runtime_failure.h"
#include "transfer/image_buffers.h"
#include "upgrade/image_loading.h"

#include <QRegularExpression>

/// Puts the block into an image whose other bytes mean nothing.
static void makeImage(const QByteArray& versionWord, const QByteArray& typeKey) {
    gImageBuf.fill('\xEE', kImageSize);
    gImageBuf.append('\0');
    gImageBuf.replace(0x3BF05, versionWord.size(), versionWord);
    gImageBuf.replace(0x3BF10, typeKey.size(), typeKey);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const QRegularExpression version(QStringLiteral("\\A[0-9]{1,2}\\.[0-9]{3}\\z"));
    Input input(bytes, size);
    const QByteArray versionWord = QByteArray::fromStdString(input.bytes(2)).leftJustified(2, '\0');
    const QByteArray typeKey = QByteArray::fromStdString(input.bytes(16)).leftJustified(16, '\0');
    writeProgramFile(QStringLiteral("TYPE.INI"), QByteArray::fromStdString(input.rest()));
    makeImage(versionWord, typeKey);
    const int word = static_cast<unsigned char>(versionWord[0]) + 256 * static_cast<unsigned char>(versionWord[1]);

    gBoxes = 0;
    const QString wordText = fncGetImageInfo(kImageVersionWord);
    require(wordText == (word <= 32767 ? QString::number(word) : QString()), "the version word is 0 to 32767");
    require(gBoxes == (word <= 32767 ? 0 : 1), "any other is reported once");
    require(fncGetImageInfo(kImageTypeKey) == trimBlanks(QString::fromLatin1(typeKey)), "the type key is its 16 bytes");

    const QByteArray image = gImageBuf;
    try {
        subTakeImageInfo();
    } catch (const RuntimeFailure& f) {
        require(f.number() == failure::kSubscript || f.number() == failure::kOverflow, "the failure is a known one");
        require(gFileTypeName.isEmpty(), "an image that no range has been found for has no name");
    }
    require(version.match(gFileVersion).hasMatch(), "the version is written as 0.000");
    require(gFileTypeName.size() <= 126 && gFileTypeName == trimBlanks(gFileTypeName),
            "the name is a value of the file");
    require(gImageBuf == image, "the image stays as it is");
    return 0;
}
