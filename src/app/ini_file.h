/// Reading values and lists of an INI file. Nothing here writes one.
#pragma once

#include <QString>

/// Size of the largest INI file that is read, in bytes; a real one has a few thousand.
inline constexpr qsizetype kMaxIniBytes = qsizetype{4} * 1'024 * 1'024;

/// Most items that a list value gives; the rest is dropped.
inline constexpr int kMaxListItems = 101;

/// Items of the list that was split last; the next split replaces them.
extern QStringList gListItems;

/// The value of `key` in `section` of the file at path `file`; sections and keys match without regard to case.
///
/// At most 126 characters; what follows an apostrophe is dropped, tabs become blanks, blanks at both ends are removed.
/// Empty when file, section or key is missing, and after a failure, which has been reported; such as that of a file of
/// more than kMaxIniBytes.
QString fncGetIniString(const QString& section, const QString& key, const QString& file);

/// Splits `list` at its commas into gListItems, each item without blanks at its ends; empty items stay.
///
/// Tabs in `list` itself become blanks.
/// @return the number of items, 1 to kMaxListItems
int fncSplitList(QString& list);

/// The reading rules for one value, as it stands in the file. Pure.
QString iniValue(const QString& stored);

/// The first value for `key` in `section` of the INI file with the content `bytes`, as it is stored; empty when there
/// is none. Pure.
/// @throws std::bad_alloc  out of memory
QString storedValue(const QByteArray& bytes, const QString& section, const QString& key);

/// The text of an INI file: UTF-8 if all of `bytes` decodes as such, else CP932. Pure.
QString iniText(const QByteArray& bytes);
