#pragma once

#include <QSet>
#include <QStringList>

class ObjectWriter;

/// Subindex 0 of PDO mappings (CiA 301) whose file gives the entries alone, as objects in compact
/// form do (CiA 306). It says how many entries are in use, which a compact form doesn't tell, and
/// has the access type of the entries, which together say whether the mapping can be changed.
class PdoMappingCounts
{
public:
    /// Subindex 0 of the object is one that the importer made.
    void add(quint16 index);
    /// The file has it after all.
    void remove(quint16 index) { m_indices.remove(index); }
    void clear() { m_indices.clear(); }

    /// Makes each fit its entries: the count is that of the entries up to the first that maps
    /// nothing. A fixed mapping loses the entries behind them, which nobody could ever fill; a PDO
    /// without anything mapped is disabled. Gives a sentence for each of these.
    [[nodiscard]] QStringList mend(ObjectWriter &writer) const;

private:
    QSet<quint16> m_indices;
};
