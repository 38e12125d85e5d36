/// Reading values and lists from an INI file.
#pragma once

#include <QString>

/// Largest INI file that is read, in bytes; a real one has a few thousand.
inline constexpr qsizetype kMaxIniBytes = qsizetype{4} * 1'024 * 1'024;

/// Most items that a list can have; the rest is dropped.
inline constexpr int kMaxListItems = 101;

/// Items of the last list that was split.
extern QStringList gListItems;

/// The value of `key` in `section` of the file at path `file`; sections and keys match without regard to case.
///
/// At most 126 characters; what follows an apostrophe is dropped, tabs become blanks, blanks at both ends are removed.
/// Empty when file, section or key is missing, and after a failure, such as a file of more than kMaxIniBytes, which has
/// been reported.
QString fncGetIniString(const QString& section, const QString& key, const QString& file);

/// Splits `list` at its commas into gListItems, trimming blanks; empty items stay.
///
/// Tabs in `list` itself are replaced by blanks.
/// @return the number of items, 1 to kMaxListItems
int fncSplitList(QString& list);

/// Applies the reading rules to one value as stored in the file. Pure.
QString iniValue(const QString& stored);

/// The first value for `key` in `section` of the INI file with the content `bytes`, as it is stored; empty when there
/// is none. Pure.
/// @throws std::bad_alloc  out of memory
QString storedValue(const QByteArray& bytes, const QString& section, const QString& key);

/// The text of an INI file: UTF-8 if all of `bytes` decodes as such, else CP932. Pure.
QString iniText(const QByteArray& bytes);
