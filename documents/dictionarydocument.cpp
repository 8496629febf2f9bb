#include "documents/dictionarydocument.h"

#include "canopen/cohelper.h"
#include "canopen/helper.h"
#include "canopen/indextext.h"

#include <QDebug>
#include <QScopeGuard>
#include <QThread>

QString DictionaryDocument::fileName() const
{
    return baseName() + m_fileSuffix + namedFile();
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
    ObjectWalk objects(*store(), m_line);
    const auto visitAt = [&](qsizetype i) { visit(named(objects.at(i))); };
    walk(objects.size(), visitAt, percent);
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

const DictionaryDocument::Object &DictionaryDocument::named(Object &object)
{
    if (object.data.name.isEmpty())
        object.data.name = IndexText::unnamedObject;
    for (Entry &entry : object.entries) {
        if (entry.data.name.isEmpty())
            entry.data.name = IndexText::unnamedSubIndex;
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
    return IndexText::hex(dataType);
}

bool DictionaryDocument::isDefaultExported(const ObjectDataBase::SUBINDEX_DATA_T &entry)
{
    return entry.writedefaulttoeds == 2 || (entry.writedefaulttoeds == 1 && entry.defaultineds);
}
