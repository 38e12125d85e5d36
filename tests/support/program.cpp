#include "support/program.h"

#include "system/program_end.h"
#include "system/program_folder.h"
#include "text/string_table.h"

#include <QFile>

ProgramTest::ProgramTest() {
    setProgramFolder(folder_.path());
    setProgramEnd([] { throw ProgramEnded{}; });
    gLanguage = 0;
    gLangOffset = 0;
}

ProgramTest::~ProgramTest() { setProgramEnd({}); }

void ProgramTest::writeFile(const QString& name, const QByteArray& content) const {
    QFile target(file(name));
    ASSERT_TRUE(target.open(QIODevice::WriteOnly)) << name.toStdString();
    target.write(content);
}

QByteArray ProgramTest::readFile(const QString& name) const {
    QFile source(file(name));
    return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
}

void ProgramTest::linkPort(int number, const QString& device) const {
    const QString link = file(QStringLiteral("com%1").arg(number));
    QFile::remove(link);
    ASSERT_TRUE(QFile::link(device, link));
}
