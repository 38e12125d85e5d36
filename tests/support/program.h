/// A program folder of the test's own, and an end of the program that a test survives.
#pragma once

#include "support/print.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// Thrown in the place of the program's end.
struct ProgramEnded {};

/// Fresh state for each test: an empty program folder, Japanese without any form's texts applied, no port, short waits.
class ProgramTest : public testing::Test {
protected:
    ProgramTest();
    ~ProgramTest() override;

    QString file(const QString& name) const { return folder_.filePath(name); }
    void writeFile(const QString& name, const QByteArray& content) const;
    QByteArray readFile(const QString& name) const;

    /// Makes COM `number` a link to `device`, replacing the link that is there.
    void linkPort(int number, const QString& device) const;

private:
    QTemporaryDir folder_;
};
