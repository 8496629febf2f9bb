#pragma once

#include "generators/base/filegenerator.h"

#include <QList>

/// gen_indices.h: names for object indexes, subindexes, PGNs, SPNs and CAN-IDs.
class IndicesGenerator : public FileGenerator
{
    Q_OBJECT

public:
    explicit IndicesGenerator(QObject *parent = nullptr);

    /// The lines whose objects get names, in this order; all lines of the project if not told.
    void setLines(const QList<quint8> &lines) { m_lines = lines; }

protected:
    void writeContent(QIODevice &device) override;

private:
    QList<quint8> m_lines;
};
