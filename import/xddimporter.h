#pragma once

#include "import/dictionaryimporter.h"

#include <memory>
#include <optional>

class ObjectWriter;
class QXmlStreamReader;

/// Imports device descriptions of CANopen FD in XML (CiA 1311): objects, their elements and the
/// product's name. `importError` tells of a document of another form and of faults of the XML; a
/// file with either leaves the store as it is.
class XDDImporter : public DictionaryImporter
{
    Q_OBJECT

public:
    XDDImporter();
    ~XDDImporter() override;

private:
    bool import() override;
    void reset() override;
    void read();
    void readDocument(QXmlStreamReader &xml);
    void readElement(QXmlStreamReader &xml);
    void readObject(const QXmlStreamReader &xml);
    void readEntry(const QXmlStreamReader &xml);
    void tell(ImportResult::Kind kind, const QXmlStreamReader &xml, const QString &text);
    [[nodiscard]] bool write();

    std::unique_ptr<ObjectWriter> m_writer;
    std::optional<quint16> m_index; ///< of the object that elements belong to
    std::optional<QString> m_productName;
    bool m_objectSeen = false;
};
