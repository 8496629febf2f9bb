#include "import/vxmpimporter.h"

#include "canopen/indextext.h"
#include "store/objectdatabase.h"

#include <QSet>

#include <algorithm>

VXMPImporter::VXMPImporter()
{
    setLine(ObjectDataBase::stagingLine);
}

VXMPImporter::~VXMPImporter()
{
    wait();
}

void VXMPImporter::setPgnRange(quint32 low, quint32 high)
{
    m_lowPgn = low;
    m_highPgn = high;
}

bool VXMPImporter::import()
{
    m_sourceLines.clear();
    ObjectDataBase source;
    if (!source.openDataBase(fileName(), true)) {
        const QString reason = source.lastErrorText();
        reportError(reason.isEmpty() ? tr("%1: The project can't be opened.").arg(fileName())
                                     : QStringLiteral("%1: %2").arg(fileName(), reason));
        return true;
    }
    m_sourceLines = source.getLines();
    m_sourceLines.removeIf([](quint8 number) { return number >= ObjectDataBase::comparisonLine; });
    std::sort(m_sourceLines.begin(), m_sourceLines.end());
    if (!m_sourceLines.contains(m_sourceLine) || isCancelled())
        return true;
    dropUnwantedPgns(source);
    const bool done = copyObjects(source);
    emit progress(80);
    // What the line has besides. No object lies in a range from top to bottom.
    return ObjectDataBase::copyLine(*store(), source, m_sourceLine, line(), 0xFFFF, 0) && done;
}

/// In a few large steps, each object in the place of a former one.
bool VXMPImporter::copyObjects(ObjectDataBase &source)
{
    const auto bound = [](quint32 index) { return static_cast<int>(std::min(index, 0xFFFFU)); };
    source.cacheAllSubs(m_sourceLine);
    const QList<quint16> present = store()->getIndices(line());
    const QSet<quint16> former(present.begin(), present.end());
    bool done = true;
    QList<ObjectDataBase::IndexEntry> objects;
    QList<ObjectDataBase::SubEntry> entries;
    const QList<quint16> indices =
        source.getIndices(m_sourceLine, bound(lowIndex()), bound(highIndex()));
    for (const quint16 index : indices) {
        if (isCancelled())
            return true;
        if (former.contains(index))
            done &= store()->deleteIndex(line(), index, true);
        ObjectDataBase::INDEX_DATA_T object;
        source.getIndexData(m_sourceLine, index, object);
        if (object.name.isEmpty())
            object.name = IndexText::unnamedObject;
        objects.append({line(), index, object});
        const QList<quint8> subindices = source.getSubIndices(m_sourceLine, index);
        for (const quint8 subindex : subindices) {
            ObjectDataBase::SUBINDEX_DATA_T data;
            if (source.getSubIndexData(m_sourceLine, index, subindex, data))
                entries.append({line(), index, subindex, data});
        }
    }
    done &= store()->addIndices(objects);
    done &= store()->addSubIndices(entries);
    // The batches go past the caches.
    store()->clearSubCache(line());
    return done;
}

/// The opened project is a private copy, so what isn't wanted can be taken out of it beforehand.
void VXMPImporter::dropUnwantedPgns(ObjectDataBase &source) const
{
    for (const quint8 direction : {ObjectDataBase::receive, ObjectDataBase::transmit}) {
        const bool isWanted = m_direction == bothDirections || m_direction == direction;
        const QList<quint32> numbers = source.getPGNList(m_sourceLine, direction);
        for (const quint32 number : numbers) {
            if (!isWanted || number < m_lowPgn || number > m_highPgn)
                source.deletePGN(m_sourceLine, number, direction);
        }
    }
}
