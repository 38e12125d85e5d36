#include "upgrade/image_info.h"

#include "system/runtime_failure.h"
#include "text/characters.h"
#include "text/error_report.h"
#include "text/string_table.h"
#include "transfer/image_file.h"

// Unit addresses; the first byte of an image lies at kImageBase.
static constexpr int kImageBase = 0xC0000;
static constexpr int kVersionLow = 0xFBF05;
static constexpr int kVersionHigh = 0xFBF06;
static constexpr int kTypeKeyFirst = 0xFBF10;
static constexpr int kTypeKeyLast = 0xFBF1F;

int imageVersionWord(const QByteArray& image) {
    const auto byteAt = [&image](int address) { return static_cast<unsigned char>(image[address - kImageBase]); };
    const int word = byteAt(kVersionHigh) * 256 + byteAt(kVersionLow);
    if (word > 0x7FFF)
        throw RuntimeFailure(failure::kOverflow,
                             textByOffset({u"Overflow: the version word of the image is %1, above 32767",
                                           u"オーバーフロー: イメージのバージョン値 %1 が 32767 を超えています"})
                                 .arg(word));
    return word;
}

QString fncGetImageText(const QByteArray& buffer, int first, int last, int base) {
    return singleByteText(buffer.mid(first - base, last - first + 1));
}

QString fncGetImageInfo(int kind) {
    if (gImageBuf.isEmpty())
        return {};
    if (kind == kImageTypeKey)
        return trimBlanks(fncGetImageText(gImageBuf, kTypeKeyFirst, kTypeKeyLast, kImageBase));
    QString word;
    runTrapped([&word] { word = QString::number(imageVersionWord(gImageBuf)); });
    return word;
}
