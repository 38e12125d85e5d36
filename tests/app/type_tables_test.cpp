#include "app/type_tables.h"

#include "app/numbers.h"
#include "support/program.h"
#include "system/runtime_failure.h"

#include <cmath>

TEST(Numbers, AreReadFromThePrefixAndRoundedHalfToEven) {
    const std::pair<const char*, double> cases[] = {
        {"1 2 kg", 12}, {"-1.5e2x", -150}, {"+.5", .5}, {"3.", 3}, {"&H1F", 31}, {"&hffzz", 255}, {"abc", 0},  {"", 0},
        {"e5", 0},      {"1e", 1},         {"&H", 0},   {"-", 0},  {"1D2", 100}, {"0x10", 0},     {"１２", 0}, {".", 0},
    };
    for (const auto& [text, value] : cases)
        EXPECT_EQ(leadingNumber(text), value) << text;
    EXPECT_EQ(toInt16(2.5), 2);
    EXPECT_EQ(toInt16(3.5), 4);
    EXPECT_EQ(toInt16(-32768.4), -32768);
    EXPECT_THROW(toInt16(32767.5), RuntimeFailure);
    EXPECT_THROW(toInt32(std::nan("")), RuntimeFailure);
}

class TypeTables : public ProgramTest {};

TEST_F(TypeTables, GiveNameAndVersionOfAUnit) {
    writeFile("TYPE.INI",
              "[AMP_TYPE]\n0A = 12000, TYPE-A ,x,22000,TYPE-B\n0B = 12000,TYPE-A,x\n0C = 12000\n"
              "0D = -3e9,TYPE-D\n[IFU_TYPE]\nMODEL 1 = D1, further\nMODEL 2 = D2\n[IFU_DEFINE]\nD1 = IFU-1\n");
    QString name;
    std::int32_t offset = 0;
    const std::tuple<const char*, int, const char*> cases[] = {
        {"0a", 12000, "found TYPE-A 0"}, {"0A", 21999, "found TYPE-A 9999"}, {"0A", 22000, "found TYPE-B 0"},
        {"0A", 32000, "unknown  0"},     {"0B", 22000, "unknown  0"},        {"FF", 12000, "unknown X 7"},
    };
    for (const auto& [kind, number, result] : cases) {
        name = "X";
        offset = 7;
        const QString found = fncGetAmpType(kind, number, name, offset) ? "found" : "unknown";
        EXPECT_EQ(found + ' ' + name + ' ' + QString::number(offset), result) << kind << " " << number;
    }
    EXPECT_THROW(fncGetAmpType("0C", 12000, name, offset), RuntimeFailure) << "entry without a name";
    EXPECT_THROW(fncGetAmpType("0D", 1, name, offset), RuntimeFailure) << "difference above 32 bits";
    EXPECT_EQ(fncGetIfuDefine("  model 1 ", "IFU_TYPE"), "IFU-1");
    EXPECT_EQ(fncGetIfuDefine("MODEL 2", "IFU_TYPE"), "") << "missing definition";
    EXPECT_EQ(fncGetIfuDefine("MODEL 1", "IFU_BIN_TYPE"), "") << "another section";
}
