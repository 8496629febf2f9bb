#pragma once

#include "import/dictionaryimporter.h"
#include "import/pdomappingcounts.h"

#include <memory>

class EdsParser;
class ObjectWriter;

/// Imports Electronic Data Sheets and Device Configuration Files (CiA 306): objects, subindices
/// and their descriptions, the device data of the line, and the PDOs that the file counts but
/// doesn't describe.
class EDSImporter : public DictionaryImporter
{
    Q_OBJECT

public:
    EDSImporter();
    ~EDSImporter() override;

    /// Whether the values that a DCF configures become the default values too.
    void setDcf(bool isDcf) { m_isDcf = isDcf; }
    [[nodiscard]] bool isDcf() const { return m_isDcf; }

private slots:
    void newIndex(const CANopen::CANopenIndex &record);
    void newSubIndex(const CANopenSubindex &record);

private:
    bool import() override;
    void reset() override;
    bool read();
    void addCompactEntries(const CANopen::CANopenIndex &record);
    bool importDeviceData();
    bool completePdos();
    bool permitDynamicMapping();

    std::shared_ptr<EdsParser> m_parser;
    std::unique_ptr<ObjectWriter> m_writer;
    PdoMappingCounts m_madeCounts;
    bool m_hasDynamicMapping = false;
    bool m_isDcf = false;
};
