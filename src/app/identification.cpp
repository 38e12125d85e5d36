#include "app/identification.h"

#include "app/numbers.h"
#include "app/type_tables.h"
#include "link/device_commands.h"
#include "link/protocol_words.h"
#include "link/waits.h"
#include "system/program_end.h"
#include "text/characters.h"
#include "text/error_report.h"
#include "text/message_box.h"
#include "text/string_table.h"

QString gAmpTypeName;
QString gAmpVersion;
QString gIfuTypeName;
QString gIfuVersion;

namespace {

/// Whether the identification continues. If not, it stops silently, or the program ends.
bool readStatus() {
    QByteArray reply;
    const QString result = fncReadUnitStatus(kReadStatus, reply);
    if (result == kNotIdentifiable) {
        gIfuVersion.clear();
        return false;
    }
    if (result != kNormalEnd)
        endProgram();
    return true;
}

void requireOneSensor() {
    if (gUnitStatus == QLatin1String("01") || gSensorCount == 0) {
        fncMsgBox(IDS_MSGERR_UNIT_NOTCONNECT, kCritical);
        endProgram();
    }
    if (gSensorCount != 1) {
        fncMsgBox(IDS_MSGERR_NOTONLY_ONE_SENSOR, kQuestion);
        endProgram();
    }
}

/// The bytes from `first` on as one unsigned big-endian number.
std::int32_t bigEndianNumber(const QByteArray& reply, qsizetype first) {
    double value = 0;
    for (const char byte : reply.mid(first))
        value = value * 256 + static_cast<unsigned char>(byte);
    return toInt32(value);
}

/// Reads the amplifier's type number; false when the unit has none to give.
bool readTypeNumber(std::int32_t& number) {
    QByteArray reply;
    const QString result = fncReadVariable(kTypeNumberArea, gUnitNo, 1, reply, gWaits.reply, false);
    if (result == kNotAvailable)
        return false;
    if (result != kNormalEnd)
        endProgram();
    number = bigEndianNumber(reply, kReplyData + 2);
    return true;
}

QString readKindKey() {
    QByteArray reply;
    if (fncReadVariable(kKindArea, gUnitNo, 1, reply, gWaits.reply, false) != kNormalEnd)
        endProgram();
    return QString::fromLatin1(reply.right(1).toHex().toUpper());
}

void identifyAmplifier(std::int32_t typeNumber) {
    const QString kindKey = readKindKey();
    QString name;
    std::int32_t offset = 0;
    fncGetAmpType(kindKey, typeNumber, name, offset);
    gAmpTypeName = name;
    gAmpVersion = versionText(offset);
}

void identifyInterfaceUnit() {
    gIfuVersion.clear();
    gIfuTypeName.clear();
    QByteArray reply;
    if (fncSendTextCommand(kReadAttributes, reply) != kNormalEnd)
        endProgram();
    const QString attributes = singleByteText(reply.mid(kReplyData));
    gIfuTypeName = trimBlanks(fncGetIfuDefine(attributeModel(attributes), QStringLiteral("IFU_TYPE")));
    gIfuVersion = attributeVersion(attributes);
}

}  // namespace

QString attributeModel(const QString& attributes) { return trimBlanks(attributes.left(16)); }

QString attributeVersion(const QString& attributes) {
    constexpr qsizetype kSearchFrom = 15;
    const qsizetype mark = attributes.indexOf(QLatin1Char('V'), kSearchFrom);
    return mark < 0 ? QString() : trimBlanks(attributes.mid(mark + 1, 6));
}

void subGetUnitInfo() {
    runTrapped([] {
        if (!readStatus())
            return;
        requireOneSensor();
        gUnitNo = kSensorAmplifier;
        std::int32_t typeNumber = 0;
        if (!readTypeNumber(typeNumber))
            return;
        identifyAmplifier(typeNumber);
        identifyInterfaceUnit();
    });
}
