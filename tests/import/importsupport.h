#pragma once

#include "import/basedataimporter.h"
#include "store/objectdatabase.h"

#include <QString>
#include <QTemporaryDir>

#include <memory>

/// What the tests of importers share.
namespace ImportSupport {

/// A store with a new project of one line.
[[nodiscard]] std::unique_ptr<ObjectDataBase> newStore();
/// Writes a file into the folder and gives its path.
[[nodiscard]] QString write(const QTemporaryDir &folder, const QString &name,
                            const QByteArray &content);
/// Runs an importer on its thread and waits for its end.
void run(BaseDataImporter &importer, ObjectDataBase &store, const QString &file, quint8 line = 0,
         quint32 low = 0x1000, quint32 high = 0xBFFF);
/// Every value of the line's objects and subindices, one line of text each.
[[nodiscard]] QStringList content(ObjectDataBase &store, quint8 line = 0);
[[nodiscard]] ObjectDataBase::INDEX_DATA_T object(ObjectDataBase &store, quint16 index,
                                                  quint8 line = 0);
[[nodiscard]] ObjectDataBase::SUBINDEX_DATA_T entry(ObjectDataBase &store, quint16 index,
                                                    quint8 subindex = 0, quint8 line = 0);

} // namespace ImportSupport
