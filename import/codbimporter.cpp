#include "import/codbimporter.h"

#include "canopen/indextext.h"
#include "canopen/objectranges.h"
#include "canopen/safefile.h"

#include <QDebug>
#include <QFileInfo>
#include <QStringDecoder>

#include <algorithm>

namespace {

// A few lines can ask for copies without end; no real profile comes near these.
constexpr qint64 largestFile = qint64(32) * 1024 * 1024;
constexpr qsizetype entriesPerBatch = 20000;

} // namespace

CODBImporter::CODBImporter() = default;

CODBImporter::~CODBImporter()
{
    wait();
}

void CODBImporter::reset()
{
    m_staged.clear();
    m_present.clear();
    m_entryCount = 0;
    qDebug() << "Import completeted";
}

bool CODBImporter::import()
{
    const std::optional<QString> text = readText();
    if (!text)
        return true;
    const QList<quint16> present = store()->getIndices(line());
    m_present = QSet<quint16>(present.begin(), present.end());
    if (!readLines(*text))
        return true;
    emit progress(50);
    return write();
}

std::optional<QString> CODBImporter::readText()
{
    if (QFileInfo(fileName()).size() > largestFile) {
        reportError(tr("File %1 is too large for a profile database.").arg(fileName()));
        return std::nullopt;
    }
    QString fault;
    const auto content = SafeFile::read(fileName(), largestFile, fault);
    if (!content) {
        qDebug() << fileName() << fault;
        reportError(tr("File %1 is not readable.").arg(fileName()));
        setFile(QString());
        return std::nullopt;
    }
    const QByteArray &bytes = *content;
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(bytes);
    // The format is older than the habit of writing UTF-8.
    return decoder.hasError() ? QString::fromLatin1(bytes) : text;
}

bool CODBImporter::readLines(const QString &text)
{
    int number = 0;
    const auto lines = QStringView(text).split(u'\n');
    for (QStringView content : lines) {
        if (isCancelled())
            return true;
        ++number;
        if (content.endsWith(u'\r'))
            content.chop(1);
        const CodbLine line = CodbLine::parse(content.toString());
        if (const QString doubt = line.doubt(); !doubt.isEmpty())
            note(ImportResult::Kind::Read, number, doubt);
        if (line.kind() == CodbLine::Kind::Faulty)
            note(ImportResult::Kind::PassedOver, number, line.fault());
        else if (!take(line))
            note(ImportResult::Kind::PassedOver, number,
                 tr("object %1 is not there to be copied").arg(IndexText::hex(line.source())));
        if (m_entryCount > mostEntries) {
            reportError(tr("%1:%2: more than %3 subindices; nothing is imported.")
                            .arg(fileName())
                            .arg(number)
                            .arg(mostEntries));
            return false;
        }
    }
    return true;
}

/// False if the line asks for a copy that can't be made.
bool CODBImporter::take(const CodbLine &line)
{
    switch (line.kind()) {
    case CodbLine::Kind::Object:
        if (isInRange(line.index()))
            addObject(line);
        return true;
    case CodbLine::Kind::Subindex:
        addEntry(line);
        return true;
    case CodbLine::Kind::Copy:
        return !m_expandCopies || !isInRange(line.index()) ||
               copyObject(line.source(), line.index());
    case CodbLine::Kind::Nothing:
    case CodbLine::Kind::Unused:
    case CodbLine::Kind::Faulty:
        break;
    }
    return true;
}

void CODBImporter::addObject(const CodbLine &line)
{
    const ObjectDataBase::INDEX_DATA_T data = line.objectData();
    m_staged[line.index()].object = data;
    CANopen::CANopenIndex record;
    record.index = line.index();
    record.objectCode = static_cast<quint8>(data.objecttype);
    record.dataType = data.datatype;
    record.name = data.name;
    record.category = data.category;
    emit newIndex(record);
    if (data.objecttype == CANopen::VAR)
        addEntry(line);
}

void CODBImporter::addEntry(const CodbLine &line)
{
    ObjectDataBase::SUBINDEX_DATA_T entry = line.entryData();
    const std::optional<ObjectDataBase::INDEX_DATA_T> object =
        line.subindex() <= 1 ? objectOf(line.index()) : std::nullopt;
    if (object && object->objecttype == CANopen::ARRAY && line.subindex() == 1 &&
        object->datatype != entry.datatype) {
        m_staged[line.index()].object = object;
        m_staged[line.index()].object->datatype = entry.datatype;
    }
    const bool hasParts = object && object->objecttype != CANopen::VAR;
    if (hasParts && line.subindex() == 0 && line.index() >= ObjectRanges::manufacturer.low)
        entry.implementation = CANopen::ManagedConst;

    CANopenSubindex record;
    record.index = line.index();
    record.subindex = line.subindex();
    record.name = entry.name;
    record.dataType = entry.datatype;
    record.accessType = entry.accesstype;
    record.pdoMapping = entry.pdomapping != PDOMapping::Forbidden;
    record.defaultValue = entry.defaultvalue;
    m_staged[line.index()].entries.insert(line.subindex(), entry);
    ++m_entryCount;
    emit newSubIndex(record);
}

std::optional<ObjectDataBase::INDEX_DATA_T> CODBImporter::objectOf(quint16 index)
{
    const auto found = m_staged.constFind(index);
    if (found != m_staged.constEnd() && (found->object || found->replaces))
        return found->object;
    ObjectDataBase::INDEX_DATA_T data;
    if (m_present.contains(index) && store()->getIndexData(line(), index, data))
        return data;
    return std::nullopt;
}

/// The object with all its subindices, those of the store and above them those of the file.
CODBImporter::Staged CODBImporter::completeObject(quint16 index)
{
    Staged staged = m_staged.value(index);
    if (!staged.replaces && m_present.contains(index)) {
        staged.object = objectOf(index);
        const QList<quint8> subindices = store()->getSubIndices(line(), index);
        for (const quint8 subindex : subindices) {
            ObjectDataBase::SUBINDEX_DATA_T data;
            if (!staged.entries.contains(subindex) &&
                store()->getSubIndexData(line(), index, subindex, data))
                staged.entries.insert(subindex, data);
        }
    }
    staged.replaces = true;
    return staged;
}

bool CODBImporter::copyObject(quint16 source, quint16 target)
{
    if (!objectOf(source))
        return false;
    if (source == target)
        return true;
    const Staged copy = completeObject(source);
    m_entryCount += copy.entries.size();
    m_staged.insert(target, copy);
    return true;
}

bool CODBImporter::write()
{
    bool done = true;
    QList<ObjectDataBase::IndexEntry> objects;
    QList<ObjectDataBase::SubEntry> batch;
    const auto flush = [&] {
        done &= store()->addIndices(std::exchange(objects, {}));
        done &= store()->addSubIndices(std::exchange(batch, {}));
    };
    for (auto staged = m_staged.cbegin(); staged != m_staged.cend() && !isCancelled(); ++staged) {
        const quint16 index = staged.key();
        if (staged->replaces && m_present.contains(index))
            done &= store()->deleteIndex(line(), index);
        if (staged->object)
            objects.append({line(), index, *staged->object});
        for (auto entry = staged->entries.cbegin(); entry != staged->entries.cend(); ++entry)
            batch.append({line(), index, entry.key(), entry.value()});
        if (batch.size() >= entriesPerBatch)
            flush();
    }
    flush();
    // The batches go past the caches.
    store()->clearSubCache(line());
    return done;
}
