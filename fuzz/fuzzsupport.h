#pragma once

#include "store/objectdatabase.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>

/// What fuzz targets need that read files.
namespace FuzzSupport {

/// The application object, without the noise of logs; once at the start.
inline void prepare()
{
    static int count = 1;
    static char name[] = "fuzz";
    static char *arguments[] = {name, nullptr};
    static QCoreApplication application(count, arguments);
    QCoreApplication::setApplicationName(QStringLiteral("CANopen Quillforge"));
    QCoreApplication::setOrganizationName(QStringLiteral("tolvex"));
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\n*.warning=false"));
}

/// The input as a file; one place for all inputs.
inline QString file(const uint8_t *data, std::size_t size, const char *suffix)
{
    static const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("input.") + QLatin1String(suffix)));
    if (file.open(QIODevice::WriteOnly))
        file.write(reinterpret_cast<const char *>(data), static_cast<qint64>(size));
    return file.fileName();
}

/// One project that all inputs go into.
inline ObjectDataBase &store()
{
    static ObjectDataBase store;
    static const bool ready = store.createNewDataBase();
    Q_UNUSED(ready)
    return store;
}

/// A line of it as if new, in a tenth of the time that a new one takes.
inline void emptyLine(quint8 line)
{
    if (!store().lineExists(line))
        store().addNode(line, ObjectDataBase::NODE_DATA_T());
    const QList<quint16> indices = store().getIndices(line);
    for (const quint16 index : indices)
        store().deleteIndex(line, index);
}

} // namespace FuzzSupport
