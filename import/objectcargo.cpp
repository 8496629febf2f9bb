#include "import/objectcargo.h"

#include "canopen/indextext.h"
#include "import/dictionaryimporter.h"
#include "import/fileimportformat.h"

#include <QHash>

#include <algorithm>
#include <array>

namespace {

constexpr quint8 staging = ObjectDataBase::stagingLine;

/// In the order of `ImportedImplementation`.
constexpr std::array kindTexts{"managed variables", "application variables",
                               "original implementation types"};

} // namespace

ObjectCargo::ObjectCargo() = default;
ObjectCargo::~ObjectCargo() = default;

BaseDataImporter *ObjectCargo::prepare(const FileImportOptions &options)
{
    const FileImportFormat *format = FileImportFormat::of(options.path);
    m_importer = format == nullptr ? nullptr : format->make(&options);
    return m_importer.get();
}

void ObjectCargo::clear()
{
    m_objects.clear();
    m_sourceLines.clear();
    m_commands = {};
    m_items.clear();
}

void ObjectCargo::list(const ImportPlace &place)
{
    m_scratch = &place.scratch;
    m_scratch->cacheAllSubs(staging);
    const QList<quint16> indices = m_scratch->getIndices(staging);
    m_objects.reserve(indices.size());
    for (const quint16 index : indices) {
        ObjectDataBase::INDEX_DATA_T data;
        m_scratch->getIndexData(staging, index, data);
        m_objects.append({index, data.name, false});
    }
    m_sourceLines = m_importer->sourceLines();
    m_commands = m_importer->commands();
    compare(place);
}

void ObjectCargo::compare(const ImportPlace &place)
{
    const QList<quint16> present = place.project.getIndices(place.line);
    m_existing = QSet<quint16>(present.begin(), present.end());
    for (Object &object : m_objects)
        object.exists = m_existing.contains(object.index);
}

QString ObjectCargo::summary() const
{
    if (m_objects.isEmpty() && m_importer)
        return QStringLiteral("%1 objects read.").arg(0) + u' ' +
               tr("The file has none from %1 to %2.")
                   .arg(IndexText::hex(static_cast<quint16>(m_importer->lowIndex())),
                        IndexText::hex(static_cast<quint16>(m_importer->highIndex())));
    const auto existing = std::count_if(m_objects.begin(), m_objects.end(),
                                        [](const Object &object) { return object.exists; });
    if (existing == 0)
        return QStringLiteral("%1 objects read.").arg(m_objects.size());
    return QStringLiteral("%1 objects read. (%2 red objects already exist in project. Import "
                          "overwrites them.)")
        .arg(m_objects.size())
        .arg(existing);
}

QList<std::pair<quint8, QString>> ObjectCargo::subindices(quint16 index) const
{
    QList<std::pair<quint8, QString>> result;
    if (m_scratch == nullptr)
        return result;
    const QList<quint8> numbers = m_scratch->getSubIndices(staging, index);
    for (const quint8 number : numbers)
        result.append({number, m_scratch->getSubIndexName(staging, index, number)});
    return result;
}

void ObjectCargo::choose(const QList<ImportedItem> &items, ImportedImplementation kind,
                         bool deviceData)
{
    m_items = items;
    m_kind = kind;
    m_deviceData = deviceData;
}

QString ObjectCargo::conflict() const
{
    QHash<quint16, quint16> sourceOf;
    for (const ImportedItem &item : m_items) {
        const auto former = sourceOf.constFind(item.target);
        if (former != sourceOf.constEnd())
            return tr("The objects %1 and %2 would both become %3.")
                .arg(IndexText::hex(*former), IndexText::hex(item.index),
                     IndexText::hex(item.target));
        sourceOf.insert(item.target, item.index);
    }
    return {};
}

bool ObjectCargo::take(const ImportPlace &place, const std::atomic<bool> &cancelled,
                       const std::function<void(int)> &progress)
{
    FileImportTransfer transfer(place.project, place.line, place.scratch, staging);
    transfer.setItems(m_items);
    transfer.setImplementation(m_kind);
    transfer.setDeviceData(m_deviceData);
    transfer.setCommands(m_commands);
    const bool done = transfer.run(cancelled, progress);
    m_hasMendedGranularity = transfer.hasMendedGranularity();
    return done;
}

QString ObjectCargo::resultText() const
{
    const QString text = QStringLiteral("%1 objects imported as %2.")
                             .arg(m_items.size())
                             .arg(QLatin1String(kindTexts[size_t(m_kind)]));
    if (!m_hasMendedGranularity)
        return text;
    return text + u' ' + tr("Their PDO mappings can be changed, so the granularity is now 8.");
}
