#include "documents/dictionarydocument.h"

#include "canopen/cohelper.h"
#include "canopen/helper.h"

#include <QDebug>
#include <QScopeGuard>
#include <QThread>

bool DictionaryDocument::Object::isCompound() const
{
    return data.objecttype == CANopen::ARRAY || data.objecttype == CANopen::RECORD;
}

quint16 DictionaryDocument::Object::dataType() const
{
    if (data.datatype == 0 && !isCompound() && !entries.isEmpty())
        return entries.constFirst().data.datatype;
    return data.datatype;
}

bool DictionaryDocument::isOutputWritable()
{
    return isFileWritable(outputPath());
}

void DictionaryDocument::writeContent(QIODevice &device)
{
    const quint8 formerLine = store()->descriptionLine();
    const auto restoreLine = qScopeGuard([&] { store()->setDescriptionLine(formerLine); });
    store()->setDescriptionLine(m_line);
    writeDocument(device);
}

void DictionaryDocument::walkObjects(const std::function<void(const Object &)> &visit, int percent)
{
    const QList<quint16> indices = store()->getIndices(m_line, firstObject);
    const auto visitAt = [&](qsizetype i) { visit(readObject(indices.at(i))); };
    walk(indices.size(), visitAt, percent);
}

void DictionaryDocument::walk(qsizetype count, const std::function<void(qsizetype)> &visit,
                              int percent)
{
    constexpr int last = 98; // the rest is for closing the file
    const int first = percent;
    for (qsizetype i = 0; i < count; ++i) {
        if (stopRequested()) {
            qDebug("Generation aborted");
            return;
        }
        visit(i);
        const auto reached = first + static_cast<int>((i + 1) * (last - first) / count);
        if (reached > percent) {
            percent = reached;
            emit progress(static_cast<quint8>(percent));
        }
        QThread::yieldCurrentThread();
    }
}

DictionaryDocument::Object DictionaryDocument::readObject(quint16 index) const
{
    Object object;
    object.index = index;
    store()->getIndexData(m_line, index, object.data);
    if (object.data.name.isEmpty())
        object.data.name = QStringLiteral("unnamed object");
    const QList<quint8> subindices = store()->getSubIndices(m_line, index);
    object.entries.reserve(subindices.size());
    for (const quint8 subindex : subindices) {
        Entry entry;
        entry.subindex = subindex;
        store()->getSubIndexData(m_line, index, subindex, entry.data);
        if (entry.data.name.isEmpty())
            entry.data.name = QStringLiteral("unnamed subindex");
        object.entries.append(std::move(entry));
    }
    return object;
}

QString DictionaryDocument::nameOf(const Object &object) const
{
    return Helper::substituteVariables(object.data.name, object.index, 0, m_line);
}

QString DictionaryDocument::nameOf(const Object &object, const Entry &entry) const
{
    return Helper::substituteVariables(entry.data.name, object.index, entry.subindex, m_line);
}

QString DictionaryDocument::variableName(const Object &object, const Entry &entry) const
{
    return Helper::substituteVariables(entry.data.varname, object.index, entry.subindex, m_line);
}

QString DictionaryDocument::identityValue(quint8 subindex) const
{
    ObjectDataBase::SUBINDEX_DATA_T entry;
    if (!store() || !store()->getSubIndexData(m_line, 0x1018, subindex, entry))
        return {};
    return plainValue(entry.currentvalue.isEmpty() ? entry.defaultvalue : entry.currentvalue);
}

QString DictionaryDocument::baseName() const
{
    return m_multiLine ? m_projectName + QLatin1Char('_') + QString::number(m_line) : m_projectName;
}

QString DictionaryDocument::plainValue(const QString &value)
{
    return value.startsWith(QLatin1String("|x")) ? value.mid(2) : value;
}

QString DictionaryDocument::dataTypeText(quint16 dataType)
{
    const QString name = COHelper::index2DataTypeString(dataType);
    if (!name.isEmpty() || dataType == 0)
        return name;
    return QStringLiteral("0x%1").arg(dataType, 4, 16, QLatin1Char('0'));
}

bool DictionaryDocument::isDefaultExported(const ObjectDataBase::SUBINDEX_DATA_T &entry)
{
    return entry.writedefaulttoeds == 2 || (entry.writedefaulttoeds == 1 && entry.defaultineds);
}
