#include "import/csvimporter.h"

#include "canopen/cohelper.h"
#include "canopen/indextext.h"
#include "canopen/wordtable.h"
#include "import/csvimporterreader.h"
#include "import/objectwriter.h"

#include <algorithm>
#include <utility>

namespace {

using Entry = ObjectDataBase::SUBINDEX_DATA_T;
using Note = ImportResult::Kind;

constexpr qsizetype batchSize = 5000;

bool isOn(const QString &text)
{
    static const WordTable<bool> words(
        {{"yes", true}, {"true", true}, {"1", true}, {"y", true}, {"x", true}, {"on", true}});
    return words.find(text).value_or(false);
}

std::optional<quint8> implementationOf(const QString &text)
{
    static const WordTable<quint8> words({{"ManagedVariable", CANopen::ManagedVariable},
                                          {"ManagedVar", CANopen::ManagedVariable},
                                          {"Managed", CANopen::ManagedVariable},
                                          {"0", CANopen::ManagedVariable},
                                          {"ManagedConst", CANopen::ManagedConst},
                                          {"ManagedConstant", CANopen::ManagedConst},
                                          {"Const", CANopen::ManagedConst},
                                          {"1", CANopen::ManagedConst},
                                          {"Variable", CANopen::Variable},
                                          {"ApplicationVariable", CANopen::Variable},
                                          {"2", CANopen::Variable},
                                          {"VirtualObject", CANopen::VirtualObject},
                                          {"Virtual", CANopen::VirtualObject},
                                          {"3", CANopen::VirtualObject}});
    return words.find(text);
}

bool isExported(const Entry &entry)
{
    return entry.writedefaulttoeds == 2 || (entry.writedefaulttoeds == 1 && entry.defaultineds);
}

/// The table tells only whether the default value is one of the device description.
void setExported(Entry &entry, bool on)
{
    if (on != isExported(entry))
        entry.writedefaulttoeds = !on ? 0 : entry.defaultineds ? 1 : 2;
}

/// A text of the table, where it has the column.
void take(QString &target, const CsvRecord &row, CsvColumn column)
{
    if (row.has(column))
        target = row.text(column);
}

void takeFlag(bool &target, const CsvRecord &row, CsvColumn column)
{
    const QString text = row.text(column);
    if (!text.isEmpty())
        target = isOn(text);
}

void readDefault(Entry &entry, const CsvRecord &row, bool isNew)
{
    take(entry.defaultvalue, row, CsvColumn::Value);
    if (row.has(CsvColumn::HasDefault))
        takeFlag(entry.defaultineds, row, CsvColumn::HasDefault);
    else if (isNew)
        entry.defaultineds = !entry.defaultvalue.isEmpty();
    if (row.has(CsvColumn::DefaultInEds))
        setExported(entry, isOn(row.text(CsvColumn::DefaultInEds)));
    else if (isNew)
        entry.writedefaulttoeds = entry.defaultineds ? 1 : 0;
}

/// Limits of another type would mean nothing.
void readLimits(Entry &entry, const CsvRecord &row, bool isOfNewType)
{
    if (row.has(CsvColumn::LowLimit) || row.has(CsvColumn::UpLimit)) {
        take(entry.lowlimit, row, CsvColumn::LowLimit);
        take(entry.uplimit, row, CsvColumn::UpLimit);
    } else if (isOfNewType) {
        COHelper::getDefaultLimits(entry.datatype, entry.lowlimit, entry.uplimit);
    }
    takeFlag(entry.limitineds, row, CsvColumn::HasLimit);
}

} // namespace

CsvImporter::CsvImporter() = default;

CsvImporter::~CsvImporter()
{
    wait();
}

bool CsvImporter::Object::isCompound() const
{
    return data.objecttype == CANopen::ARRAY || data.objecttype == CANopen::RECORD;
}

bool CsvImporter::import()
{
    m_commands = {};
    CsvReader reader;
    if (!reader.load(fileName())) {
        reportError(reader.errorText());
        return true;
    }
    const bool isRead = readRows(reader);
    bool done = true;
    if (isRead && !isCancelled()) {
        complete();
        done = write();
        noteDropped(m_droppedCount);
        if (m_runsCommands && !isCancelled())
            m_commands.run(*store(), line());
    }
    // Batches and reads have filled and passed the caches.
    store()->clearSubCaches();
    return done;
}

/// The commands are asked for afterwards.
void CsvImporter::reset()
{
    m_objects.clear();
    m_entryCount = 0;
    m_droppedCount = 0;
}

bool CsvImporter::readRows(CsvReader &reader)
{
    CsvRecord row;
    QStringList command;
    int percent = 0;
    for (;;) {
        const CsvReader::Kind kind = reader.next(row, command);
        const QList<ImportResult::Note> problems = reader.takeProblems();
        for (const ImportResult::Note &problem : problems)
            note(problem.kind, problem.line, problem.text);
        if (kind == CsvReader::Kind::End || isCancelled())
            break;
        if (kind == CsvReader::Kind::Command) {
            if (command.constFirst().compare(u"c", Qt::CaseInsensitive) == 0)
                handleCopyLine(command, reader.lineNumber());
            else
                handleDeleteLine(command, reader.lineNumber());
        } else if (reader.hasIndexColumn()) {
            readRow(row);
        }
        if (m_entryCount > mostEntries) {
            reportError(tr("%1: The file describes more than %2 sub-indices, which no device has.")
                            .arg(fileName(), QString::number(mostEntries)));
            return false;
        }
        const auto reached = static_cast<int>(reader.position() * 50 / (reader.size() + 1));
        if (reached > percent)
            emit progress(static_cast<quint8>(percent = reached));
    }
    // A file of commands alone needs no table.
    if (reader.hasIndexColumn() || !m_commands.isEmpty())
        return true;
    reportError(tr("%1: The file is not a table of objects; its head line has no column \"index\".")
                    .arg(fileName()));
    return false;
}

// --- Commands -------------------------------------------------------------------------------

std::optional<DictionaryCommands::Address> CsvImporter::addressOf(const QString &index,
                                                                  const QString &subindex) const
{
    DictionaryCommands::Address address;
    const int number = CsvReader::number(index, 0xFFFF);
    if (number < 0)
        return std::nullopt;
    address.index = static_cast<quint16>(number);
    if (subindex.isEmpty())
        return address;
    const int sub = CsvReader::number(subindex, 0xFF);
    if (sub < 0)
        return std::nullopt;
    address.subindex = static_cast<quint8>(sub);
    return address;
}

/// c,target,source or c,index,target,source
void CsvImporter::handleCopyLine(const QStringList &fields, int lineNumber)
{
    const QString first = fields.value(1);
    const QString second = fields.value(2);
    const QString third = fields.value(3);
    const bool isSubindex = !third.isEmpty();
    const auto target = addressOf(first, isSubindex ? second : QString());
    const auto source = isSubindex ? addressOf(first, third) : addressOf(second, QString());
    if (target && source)
        m_commands.copies.append({*target, *source});
    else
        note(Note::PassedOver, lineNumber,
             tr("The copy command can't be read; it is passed over."));
}

/// d,index or d,index,subindex
void CsvImporter::handleDeleteLine(const QStringList &fields, int lineNumber)
{
    if (const auto address = addressOf(fields.value(1), fields.value(2)))
        m_commands.deletions.append(*address);
    else
        note(Note::PassedOver, lineNumber,
             tr("The delete command can't be read; it is passed over."));
}

// --- Rows -----------------------------------------------------------------------------------

void CsvImporter::readRow(const CsvRecord &row)
{
    const QString indexText = row.text(CsvColumn::Index);
    const int index = CsvReader::number(indexText, 0xFFFF);
    if (index < 0) {
        note(Note::PassedOver, row.lineNumber(),
             tr("The index '%1' can't be read; the row is passed over.").arg(indexText.left(60)));
        return;
    }
    if (!isInRange(static_cast<quint32>(index)))
        return;
    const QString subText = row.text(CsvColumn::Sub);
    const int subindex = subText.isEmpty() ? 0 : CsvReader::number(subText, 0xFF);
    if (subindex < 0) {
        note(Note::PassedOver, row.lineNumber(),
             tr("The sub-index '%1' can't be read; the row is passed over.").arg(subText.left(60)));
        return;
    }
    const auto line = lineOf(row);
    if (!line)
        return;

    const Key key(*line, static_cast<quint16>(index));
    Object &object = objectOf(key, row);
    readCode(object, row);
    // An array or a record has a row of its own; any other object shares that of its value.
    const bool isOwnRow = object.isCompound() && subText.isEmpty();
    if (isOwnRow || (!object.isCompound() && subindex == 0))
        readObject(object, row);
    if (!isOwnRow)
        readEntry(object, key, static_cast<quint8>(subindex), row);
}

std::optional<quint8> CsvImporter::lineOf(const CsvRecord &row)
{
    const QString text = row.text(CsvColumn::Line);
    if (text.isEmpty() || line() >= ObjectDataBase::comparisonLine)
        return line();
    const int number = CsvReader::number(text, ObjectDataBase::comparisonLine - 1);
    if (number >= 0 && (number == line() || store()->lineExists(static_cast<quint8>(number))))
        return static_cast<quint8>(number);
    note(Note::PassedOver, row.lineNumber(),
         tr("The project has no line '%1'; the row is passed over.").arg(text));
    return std::nullopt;
}

CsvImporter::Object &CsvImporter::objectOf(const Key &key, const CsvRecord &row)
{
    const auto found = m_objects.find(key);
    if (found != m_objects.end())
        return found->second;
    if (!store()->isLineCached(key.first))
        store()->cacheAllSubs(key.first);

    Object &object = m_objects[key];
    object.isNew = !store()->getIndexData(key.first, key.second, object.data);
    object.wasCompound = !object.isNew && object.isCompound();
    if (!object.isNew)
        return object;
    object.isChanged = true;
    object.isCodeAssumed = true;
    object.data = {};
    object.data.objecttype = CANopen::VAR;
    object.data.name = row.text(CsvColumn::EdsName);
    if (object.data.name.isEmpty())
        object.data.name = QStringLiteral("Object_%1").arg(IndexText::digits(key.second));
    return object;
}

void CsvImporter::readCode(Object &object, const CsvRecord &row)
{
    const QString word = row.text(CsvColumn::ObjectCode);
    if (word.isEmpty())
        return;
    const CANopen::ObjectCode code = COHelper::string2objectCode(word);
    if (code == CANopen::UNKNOWN_OBJECT) {
        note(Note::PassedOver, row.lineNumber(),
             tr("The object code '%1' is unknown.").arg(word.left(60)));
        return;
    }
    object.isChanged |= object.data.objecttype != code;
    object.data.objecttype = code;
    object.isCodeAssumed = false;
}

/// What the row of an object itself says of it.
void CsvImporter::readObject(Object &object, const CsvRecord &row)
{
    const QString name = row.text(CsvColumn::EdsName);
    if (!name.isEmpty())
        object.data.name = name;
    take(object.data.description, row, CsvColumn::Description);
    if (object.isCompound())
        object.data.datatype = dataTypeOf(row, object.data.datatype);
    object.isChanged = true;
}

void CsvImporter::readEntry(Object &object, const Key &key, quint8 subindex, const CsvRecord &row)
{
    const auto known = object.entries.find(subindex);
    Entry entry;
    bool isNew = false;
    if (known != object.entries.end()) {
        entry = known->second;
    } else if (object.isNew || !store()->getSubIndexData(key.first, key.second, subindex, entry)) {
        isNew = true;
        entry = {};
        entry.name = subindex == 0 && !object.isCompound() ? object.data.name
                                                           : QString(IndexText::unnamedSubIndex);
    }
    const QString name = row.text(CsvColumn::EdsName);
    if (!name.isEmpty())
        entry.name = name;
    const QString access = row.text(CsvColumn::Access);
    if (!access.isEmpty())
        entry.accesstype = COHelper::normalizeAccessType(access);
    const QString mapping = row.text(CsvColumn::Mapable);
    if (!mapping.isEmpty())
        entry.pdomapping = PDOMapping::fromCSVString(mapping);
    const quint16 formerType = entry.datatype;
    readType(entry, object, row, isNew);
    readDefault(entry, row, isNew);
    readLimits(entry, row, isNew || entry.datatype != formerType);
    take(entry.description, row, CsvColumn::Description);
    takeFlag(entry.nvstorage, row, CsvColumn::NvStorage);
    takeFlag(entry.refuseread, row, CsvColumn::RefuseRead);
    takeFlag(entry.refusewrite, row, CsvColumn::RefuseWrite);
    readImplementation(entry, key, subindex, row, isNew);
    m_entryCount += known == object.entries.end() ? 1 : 0;
    object.entries.insert_or_assign(subindex, std::move(entry));
}

quint16 CsvImporter::dataTypeOf(const CsvRecord &row, quint16 fallback)
{
    const QString text = row.text(CsvColumn::DataType);
    if (text.isEmpty())
        return fallback;
    const quint16 type = COHelper::mapDataTypeString(text);
    if (type != CAN::UNKNOWN_TYPE)
        return type;
    // Structures of records have numbers but no names.
    const auto number = readFileNumber(text);
    if (number && *number > 0 && *number <= 0xFFFF)
        return static_cast<quint16>(*number);
    const QString name = COHelper::index2DataTypeString(fallback);
    note(Note::Mended, row.lineNumber(),
         tr("The data type '%1' is unknown; it becomes %2.")
             .arg(text.left(60), name.isEmpty() ? QString::number(fallback) : name));
    return fallback;
}

void CsvImporter::readType(Entry &entry, const Object &object, const CsvRecord &row, bool isNew)
{
    if (isNew)
        entry.datatype = object.data.objecttype == CANopen::ARRAY && object.data.datatype != 0
                             ? object.data.datatype
                             : quint16(CAN::UNSIGNED8);
    entry.datatype = dataTypeOf(row, entry.datatype);
}

void CsvImporter::readImplementation(Entry &entry, const Key &key, quint8 subindex,
                                     const CsvRecord &row, bool isNew)
{
    const QString word = row.text(CsvColumn::Implementation);
    const auto stated = implementationOf(word);
    if (!stated && !word.isEmpty())
        note(Note::PassedOver, row.lineNumber(),
             tr("The implementation '%1' is unknown.").arg(word.left(60)));
    if (stated)
        entry.implementation = *stated;
    else if (isNew)
        ObjectWriter::makeGeneratable(entry, key.second, subindex);

    bool isSize = false;
    const QString sizeText = row.text(CsvColumn::Size);
    const quint32 size = sizeText.toUInt(&isSize, sizeText.startsWith(u"0x") ? 16 : 10);
    if (isSize)
        entry.size = size;
    else if (!sizeText.isEmpty())
        note(Note::PassedOver, row.lineNumber(),
             tr("The size '%1' can't be read.").arg(sizeText.left(60)));

    const QString name = row.text(CsvColumn::VarName);
    if (!name.isEmpty() || (row.has(CsvColumn::VarName) && stated))
        entry.varname = name;
    // A managed object needs no name; where nobody says what it is it may become a variable.
    const bool needsName = stated ? *stated == CANopen::Variable : isNew;
    if (needsName && entry.varname.isEmpty())
        entry.varname =
            QStringLiteral("v_%1%2").arg(QString::number(key.second), QString::number(subindex));
}

// --- Completion and writing -----------------------------------------------------------------

void CsvImporter::complete()
{
    for (auto &[key, object] : m_objects)
        completeObject(key, object);
}

void CsvImporter::completeObject(const Key &key, Object &object)
{
    const bool hasElements = !object.entries.empty() && object.entries.rbegin()->first > 0;
    if (object.isCodeAssumed && hasElements) {
        object.data.objecttype = CANopen::RECORD;
        note(Note::Mended, 0,
             tr("0x%1 has no object code but several sub-indices; it becomes a record.")
                 .arg(IndexText::digits(key.second)));
    }
    if (object.isNew && object.data.objecttype == CANopen::ARRAY && !object.entries.contains(0)) {
        Entry count;
        count.name = QStringLiteral("Highest Subindex supported");
        count.datatype = CAN::UNSIGNED8;
        count.accesstype = QStringLiteral("const");
        count.implementation = CANopen::ManagedConst;
        count.defaultvalue =
            QString::number(object.entries.empty() ? 0 : object.entries.rbegin()->first);
        count.defaultineds = true;
        count.writedefaulttoeds = 1;
        COHelper::getDefaultLimits(count.datatype, count.lowlimit, count.uplimit);
        object.entries.emplace(quint8(0), std::move(count));
    }
    // The type of a variable is that of its value, and an array's that of its elements.
    const auto first = object.entries.find(object.isCompound() ? 1 : 0);
    const bool takesType = !object.isCompound() ||
                           (object.data.objecttype == CANopen::ARRAY && object.data.datatype == 0);
    if (takesType && first != object.entries.end() &&
        object.data.datatype != first->second.datatype) {
        object.data.datatype = first->second.datatype;
        object.isChanged = true;
    }
}

bool CsvImporter::write()
{
    bool done = true;
    QList<ObjectDataBase::IndexEntry> objects;
    QList<ObjectDataBase::SubEntry> batch;
    qsizetype written = 0;
    const auto flush = [&] {
        written += batch.size();
        done &= store()->addIndices(std::exchange(objects, {}));
        done &= store()->addSubIndices(std::exchange(batch, {}));
    };
    for (auto &[key, object] : m_objects) {
        if (isCancelled())
            break;
        const auto &[line, index] = key;
        if (object.wasCompound && !object.isCompound()) {
            // A record that becomes a variable would keep the subindices that it has no more.
            const QList<quint8> subindices = store()->getSubIndices(line, index);
            for (const quint8 subindex : subindices) {
                if (object.entries.contains(subindex))
                    continue;
                done &= store()->deleteSubIndex(line, index, subindex);
                ++m_droppedCount;
            }
        }
        if (object.isChanged)
            objects.append({line, index, object.data});
        for (auto &[subindex, entry] : object.entries)
            batch.append({line, index, subindex, std::move(entry)});
        if (batch.size() >= batchSize) {
            flush();
            emit progress(static_cast<quint8>(50 + 45 * written / m_entryCount));
        }
    }
    flush();
    return done;
}
