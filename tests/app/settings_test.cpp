#include "app/settings.h"

#include "app/identification.h"
#include "support/program.h"
#include "support/user.h"
#include "text/string_table.h"

class Settings : public ProgramTest {
protected:
    User user;
};

TEST_F(Settings, LanguageAndPortComeFromTheFile) {
    const std::tuple<const char*, int, const char*, int> cases[] = {
        {"JAPANESE ' remark", 0, "3", 3},
        {"japanese", 1, "abc", 1},
        {"JAPANESE", 0, "2.6", 3},
        {"E", 1, "&H10", 16},
        {"E", 1, "-1", -1},
        {"E", 1, "1 6", 1},
        {"E", 1, "4294967296", 1},
    };
    for (const auto& [language, selector, port, number] : cases) {
        writeFile("Setting.INI", QByteArray("[operation]\nLANGUAGE=") + language + "\n[ifu]\ncom=" + port + "\n");
        const bool overflow = QLatin1String(port).size() > 5;
        EXPECT_EQ(fncReadSetting(), !overflow);
        EXPECT_EQ(gLanguage, selector) << language;
        EXPECT_EQ(gComPort, number) << port;
        EXPECT_EQ(user.said().filter(": 4294967296 ").size(), overflow ? 1 : 0) << port;
    }
}
