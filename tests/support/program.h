/// A temporary program folder, and an end of the program that a test survives.
#pragma once

#include "support/print.h"
#include "system/program_end.h"
#include "system/program_folder.h"
#include "text/string_table.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <stdexcept>

struct ProgramEnded {};

/// Fresh state: empty program folder, Japanese, no form's texts applied, no port.
class ProgramRig {
public:
    ProgramRig() {
        setProgramFolder(folder_.path());
        setProgramEnd([] { throw ProgramEnded{}; });
        gLanguage = 0;
        gLangOffset = 0;
    }
    ~ProgramRig() { setProgramEnd({}); }
    ProgramRig(const ProgramRig&) = delete;
    ProgramRig& operator=(const ProgramRig&) = delete;

    QString file(const QString& name) const { return folder_.filePath(name); }

    void writeFile(const QString& name, const QByteArray& content) const {
        QFile target(file(name));
        if (!target.open(QIODevice::WriteOnly))
            throw std::runtime_error("cannot write " + name.toStdString());
        target.write(content);
    }

    QByteArray readFile(const QString& name) const {
        QFile source(file(name));
        return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
    }

    /// Links COM `number` to `device`, replacing an existing link.
    void linkPort(int number, const QString& device) const {
        const QString link = file(QString("com%1").arg(number));
        QFile::remove(link);
        if (!QFile::link(device, link))
            throw std::runtime_error("cannot link " + link.toStdString());
    }

private:
    // A name with the characters used to compose messages.
    QTemporaryDir folder_{QDir::tempPath() + "/dravolt%1%3%5-XXXXXX"};
};

class ProgramTest : public testing::Test, protected ProgramRig {};
