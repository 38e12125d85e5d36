/// What an intruder would leave beside a program: a Qt plugin that creates the file $TRAP when it is loaded.
#include <QStylePlugin>

#include <cstdio>
#include <cstdlib>

[[gnu::constructor]] static void tell() {
    if (const char* file = std::getenv("TRAP"); file != nullptr)
        std::fclose(std::fopen(file, "w"));
}

class Trap : public QStylePlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QStyleFactoryInterface_iid FILE "trap.json")

public:
    QStyle* create(const QString& /*key*/) override { return nullptr; }
};

#include "trap.moc"
