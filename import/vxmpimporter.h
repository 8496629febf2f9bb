#pragma once

#include "canopen/j1939numbers.h"
#include "import/basedataimporter.h"
#include "import/dictionaryimporter.h"

#include <QList>

/// Takes the objects of one line of another project. The whole line comes along, with its
/// messages, its UDS services and those PGNs that the range and the direction choose. A source line
/// that the project doesn't have brings nothing.
class VXMPImporter : public DictionaryImporter
{
    Q_OBJECT

public:
    static constexpr quint32 highestPgn = J1939::highestPgn;
    static constexpr quint8 bothDirections = 0;

    VXMPImporter();
    ~VXMPImporter() override;

    void setSourceLine(quint8 line) { m_sourceLine = line; }
    /// The PGNs that come along, both ends inside; all by default, none if `low` is the greater.
    void setPgnRange(quint32 low, quint32 high);
    /// `ObjectDataBase::transmit`, `receive` or, by default, `bothDirections`.
    void setDirection(quint8 direction) { m_direction = direction; }
    [[nodiscard]] QList<quint8> sourceLines() const override { return m_sourceLines; }

private:
    bool import() override;
    void reset() override {} // the lines are asked for afterwards
    bool copyObjects(ObjectDataBase &source);
    void dropUnwantedPgns(ObjectDataBase &source) const;

    quint8 m_sourceLine = 0;
    quint32 m_lowPgn = 0;
    quint32 m_highPgn = highestPgn;
    quint8 m_direction = bothDirections;
    QList<quint8> m_sourceLines;
};
