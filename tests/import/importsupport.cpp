#include "importsupport.h"

#include <QFile>

std::unique_ptr<ObjectDataBase> ImportSupport::newStore()
{
    auto store = std::make_unique<ObjectDataBase>();
    if (!store->createNewDataBase())
        qFatal("no new project");
    return store;
}

QString ImportSupport::write(const QTemporaryDir &folder, const QString &name,
                             const QByteArray &content)
{
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("can't write %s", qPrintable(name));
    return file.fileName();
}

void ImportSupport::run(BaseDataImporter &importer, ObjectDataBase &store, const QString &file,
                        quint8 line, quint32 low, quint32 high)
{
    importer.setLine(line);
    importer.setDatabase(&store);
    importer.setRange(low, high);
    importer.setFile(file);
    if (!importer.start())
        qFatal("the importer runs already");
    importer.wait();
}

ObjectDataBase::INDEX_DATA_T ImportSupport::object(ObjectDataBase &store, quint16 index,
                                                   quint8 line)
{
    ObjectDataBase::INDEX_DATA_T data;
    data.name = QStringLiteral("no such object");
    store.getIndexData(line, index, data);
    return data;
}

ObjectDataBase::SUBINDEX_DATA_T ImportSupport::entry(ObjectDataBase &store, quint16 index,
                                                     quint8 subindex, quint8 line)
{
    ObjectDataBase::SUBINDEX_DATA_T data;
    data.name = QStringLiteral("no such entry");
    store.getSubIndexData(line, index, subindex, data);
    return data;
}

QStringList ImportSupport::content(ObjectDataBase &store, quint8 line)
{
    QStringList lines;
    const QList<quint16> indices = store.getIndices(line);
    for (const quint16 index : indices) {
        const auto data = object(store, index, line);
        lines.append(QStringLiteral("%1 '%2' %3 %4 %5 '%6'")
                         .arg(index, 4, 16)
                         .arg(data.name)
                         .arg(data.objecttype)
                         .arg(data.datatype)
                         .arg(data.category)
                         .arg(data.description));
        const QList<quint8> subindices = store.getSubIndices(line, index);
        for (const quint8 subindex : subindices) {
            const auto value = entry(store, index, subindex, line);
            lines.append(QStringLiteral("%1/%2 '%3' %4 %5 '%6' '%7'")
                             .arg(index, 4, 16)
                             .arg(subindex)
                             .arg(value.name)
                             .arg(value.datatype)
                             .arg(value.accesstype, value.defaultvalue, value.currentvalue) +
                         QStringLiteral(" map %1 limits %2 '%3'-'%4' default %5 %6")
                             .arg(value.pdomapping.toUInt())
                             .arg(value.limitineds)
                             .arg(value.lowlimit, value.uplimit)
                             .arg(value.defaultineds)
                             .arg(value.writedefaulttoeds) +
                         QStringLiteral(" refuse %1 %2 size %3 impl %4 '%5' '%6' dcf %7 '%8'")
                             .arg(value.refuseread)
                             .arg(value.refusewrite)
                             .arg(value.size)
                             .arg(value.implementation)
                             .arg(value.varname, value.description)
                             .arg(value.dcfcomponent)
                             .arg(value.denotation));
        }
    }
    return lines;
}
