/// The language that the user's system speaks.
#pragma once

inline constexpr int kLangIdJapanese = 1041;
inline constexpr int kLangIdEnglish = 1033;

/// The user's default language identifier: kLangIdJapanese, or kLangIdEnglish for every other language.
int userDefaultLangId();
