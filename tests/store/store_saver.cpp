// Saves a project over and over, so that a test can end it at any moment of a save. Each save
// writes another, even state: every object of line 0 has the number of the round as its name.
#include "store/objectdatabase.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("CANopen Quillforge"));
    QCoreApplication::setApplicationVersion(QStringLiteral("4.3.3"));
    ObjectDataBase store;
    if (!store.openDataBase(app.arguments().value(1)))
        return 1;
    const QList<quint16> indices = store.getIndices(0);
    std::puts("ready");
    std::fflush(stdout);
    for (int round = 1;; ++round) {
        for (const quint16 index : indices)
            store.setIndexName(0, index, QString::number(round));
        if (!store.saveDatabase())
            return 2;
    }
}
