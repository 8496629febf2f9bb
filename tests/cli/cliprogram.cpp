#include "cliprogram.h"

#include <QCoreApplication>

void CliProgram::saveProject(const QString &name, const Change &change,
                             const QString &edition) const
{
    QCoreApplication::setApplicationName(edition);
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLFORGE_VERSION));
    ObjectDataBase store;
    const bool opened = store.openDataBase(QStringLiteral(QUILLFORGE_BINARY_DIR
                                                          "/bin/data/examples/io-module.vxmt")) &&
                        store.lastErrorText().isEmpty();
    if (opened && change)
        change(store);
    if (!opened || !store.saveDatabase(path(name)))
        qFatal("%s can't be made: %s", qPrintable(name), qPrintable(store.lastErrorText()));
}
