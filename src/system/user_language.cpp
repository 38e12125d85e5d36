#include "system/user_language.h"

#include <QLocale>

int userDefaultLangId() { return QLocale::system().language() == QLocale::Japanese ? kLangIdJapanese : kLangIdEnglish; }
