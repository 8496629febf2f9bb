#include "session/projectlines.h"

#include "canopen/linetype.h"
#include "dictionary/objectwalk.h"
#include "store/objectdatabase.h"

#include <algorithm>

namespace {

constexpr quint8 firstScratchLine = 240; ///< lines from here on are none of the user's
constexpr quint16 errorRegister = 0x1001;

void copyStandardObjects(ObjectDataBase &store, quint8 line, ObjectDataBase *library)
{
    if (store.indexExists(0, errorRegister)) {
        for (const quint16 index : store.getIndices(0, ObjectRanges::manufacturer.low)) {
            if (readDictionaryObject(store, 0, index).isShared())
                store.copyIndex(0, index, line, index);
        }
        return;
    }
    constexpr quint8 source = ObjectDataBase::stagingLine;
    if (library == nullptr || !library->lineExists(source))
        return;
    for (const quint16 index : library->getIndices(source)) {
        ObjectDataBase::INDEX_DATA_T data;
        if (library->getIndexData(source, index, data) && data.category == CANopen::Mandatory)
            store.copyIndex(source, index, line, index, library);
    }
}

QString make(ObjectDataBase &store, quint8 line, int type)
{
    ProjectLines::setType(store, line, type);
    if (store.addNode(line, ObjectDataBase::NODE_DATA_T()))
        return {};
    return QStringLiteral("Line %1 cannot be added. %2")
        .arg(QString::number(line), store.lastErrorText())
        .trimmed();
}

} // namespace

QList<quint8> ProjectLines::of(ObjectDataBase &store)
{
    QList<quint8> lines = store.getLines();
    lines.removeIf([](quint8 line) { return line >= firstScratchLine; });
    std::sort(lines.begin(), lines.end());
    return lines;
}

quint8 ProjectLines::highest(ObjectDataBase &store)
{
    const QList<quint8> lines = of(store);
    return lines.isEmpty() ? quint8(0) : lines.last();
}

QString ProjectLines::label(ObjectDataBase &store, quint8 line)
{
    const LineType &type = LineType::of(store.getLineType(line));
    return QStringLiteral("Line %1 - %2").arg(line).arg(QLatin1String(type.label));
}

bool ProjectLines::mayAdd(ObjectDataBase &store)
{
    return of(store).size() < ObjectDataBase::maximumLines;
}

void ProjectLines::setType(ObjectDataBase &store, quint8 line, int type)
{
    store.setGeneralSetting(LineType::settingKey(line), QString::number(type));
}

QString ProjectLines::add(ObjectDataBase &store, quint8 line, int type, ObjectDataBase *library)
{
    const QString error = make(store, line, type);
    if (error.isEmpty())
        copyStandardObjects(store, line, library);
    return error;
}

QString ProjectLines::duplicate(ObjectDataBase &store, quint8 from, quint8 line)
{
    const QString error = make(store, line, store.getLineType(from));
    if (!error.isEmpty() || ObjectDataBase::copyLine(store, store, from, line))
        return error;
    store.deleteNode(line); // a line with a part of it would pass for a copy
    return QStringLiteral("Line %1 cannot be copied.").arg(from);
}

QString ProjectLines::remove(ObjectDataBase &store, quint8 line)
{
    return store.deleteNode(line) ? QString()
                                  : QStringLiteral("Line %1 cannot be deleted.").arg(line);
}
