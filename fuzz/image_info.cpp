/// The information block of an image, version word (2 bytes) and type key (16), then the content of `TYPE.INI`.
#include "upgrade/image_info.h"
#include "app/type_tables.h"
#include "support/input.h"
#include "system/program_folder.h"
#include "system/runtime_failure.h"
#include "text/message_box.h"
#include "transfer/image_file.h"
#include "upgrade/image_loading.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const QTemporaryDir folder;
    static const QRegularExpression version(QStringLiteral("\\A[0-9]{1,2}\\.[0-9]{3}\\z"));
    setMessageBoxes([](const MessageBox&) { return kOk; });
    setProgramFolder(folder.path());
    Input input(bytes, size);
    const QByteArray info = QByteArray::fromStdString(input.bytes(18)).leftJustified(18, '\0');
    QFile tables(typeTableFile());
    require(tables.open(QIODevice::WriteOnly), "the program's folder is writable");
    tables.write(QByteArray::fromStdString(input.bytes(size)));
    tables.close();
    // The other bytes of the image do not matter.
    gImageBuf.fill('\xEE', kImageSize + 1);
    gImageBuf.replace(0x3BF05, 2, info.left(2));
    gImageBuf.replace(0x3BF10, 16, info.mid(2));

    try {
        takeImageInfo();
    } catch (const RuntimeFailure& f) {
        require(f.number() == failure::kSubscript || f.number() == failure::kOverflow, "the failure is a known one");
        require(gFileTypeName.isEmpty(), "an image without a range has no name");
    }
    require(version.match(gFileVersion).hasMatch(), "the version is written as 0.000");
    require(gFileTypeName.size() <= 126, "the name is a value of the file");
    for (const char c : {'\'', '\t', '\n', '\r'})
        require(!gFileTypeName.contains(QLatin1Char(c)), "a value holds no remark, tab or line break");
    return 0;
}
