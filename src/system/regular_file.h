/// A QFile that opens nothing but a regular file or a link to one. A pipe, which QFile would wait for, or a device is a
/// failure at once.
#pragma once

#include <QFile>

class RegularFile : public QFile {
public:
    using QFile::QFile;

    /// @param mode  ReadOnly, or Append, which makes a missing file
    bool open(OpenMode mode) override;
};
