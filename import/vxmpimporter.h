#pragma once

#include "import/basedataimporter.h"

/// Takes the objects of one line of another project. The whole line comes along, with its PGNs,
/// messages and UDS services. A source line that the project doesn't have brings nothing.
class VXMPImporter : public BaseDataImporter
{
    Q_OBJECT

public:
    VXMPImporter();
    ~VXMPImporter() override;

    void setSourceLine(quint8 line) { m_sourceLine = line; }

public slots:
    void doImport() override;

private:
    void copy();

    quint8 m_sourceLine = 0;
};
