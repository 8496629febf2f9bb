#include "import/xddimporter.h"

#include "canopen/cohelper.h"
#include "canopen/indextext.h"
#include "canopen/safefile.h"
#include "import/objectwriter.h"
#include "import/xmlguard.h"

#include <QDebug>
#include <QXmlStreamReader>

#include <algorithm>
#include <array>

namespace {

using Entry = ObjectDataBase::SUBINDEX_DATA_T;
using Note = ImportResult::Kind;

constexpr qint64 mostBytes = qint64(64) * 1024 * 1024;
constexpr int deepestElement = 32;

struct PdoAccess
{
    const char *text;
    PDOMapping::PDOMappingType mapping;
};

// "rw" and "wo" are what earlier documents of ours have.
constexpr std::array pdoAccesses = {
    PdoAccess{"no", PDOMapping::Forbidden}, PdoAccess{"t", PDOMapping::TPDO},
    PdoAccess{"r", PDOMapping::RPDO},       PdoAccess{"tr", PDOMapping::Allowed},
    PdoAccess{"rw", PDOMapping::Allowed},   PdoAccess{"wo", PDOMapping::RPDO},
};

std::optional<quint32> hexNumber(QStringView text, quint32 highest)
{
    bool ok = false;
    const quint32 number = text.trimmed().toUInt(&ok, 16);
    return ok && number <= highest ? std::optional(number) : std::nullopt;
}

/// What makes a document unreadable. The reader's own words tell nothing to who didn't write XML;
/// those that this importer has raised do.
QString faultOf(const QXmlStreamReader &xml)
{
    switch (xml.error()) {
    case QXmlStreamReader::CustomError:
        return xml.errorString();
    case QXmlStreamReader::PrematureEndOfDocumentError:
        return XDDImporter::tr("The file ends in the middle of the document.");
    default:
        return XDDImporter::tr("The file is no well-formed XML from here on.");
    }
}

QString attribute(const QXmlStreamReader &xml, const char *name, const QString &fallback = {})
{
    const QXmlStreamAttributes all = xml.attributes();
    const QLatin1String key(name);
    return all.hasAttribute(key) ? all.value(key).toString() : fallback;
}

void takeAccess(Entry &entry, const QString &modification, const QString &usdo, const QString &pdo)
{
    if (modification == QLatin1String("false")) {
        entry.accesstype = QStringLiteral("const");
        entry.pdomapping = PDOMapping::Forbidden;
        entry.writedefaulttoeds = 1;
        return;
    }
    for (const PdoAccess &access : pdoAccesses) {
        if (pdo == QLatin1String(access.text))
            entry.pdomapping = access.mapping;
    }
    if (modification == QLatin1String("const"))
        entry.accesstype = QStringLiteral("const");
    else if (usdo == QLatin1String("ro") || usdo == QLatin1String("wo"))
        entry.accesstype = usdo;
    else if (usdo == QLatin1String("rw") && pdo == QLatin1String("t"))
        entry.accesstype = QStringLiteral("rwr");
    else if (usdo == QLatin1String("rw") && pdo == QLatin1String("r"))
        entry.accesstype = QStringLiteral("rww");
    else if (usdo == QLatin1String("rw"))
        entry.accesstype = QStringLiteral("rw");
}

} // namespace

XDDImporter::XDDImporter() = default;

XDDImporter::~XDDImporter()
{
    wait();
}

bool XDDImporter::import()
{
    m_writer = std::make_unique<ObjectWriter>(*store(), line());
    read();
    return !errorString().isEmpty() || write();
}

void XDDImporter::reset()
{
    m_writer.reset();
    m_index.reset();
    m_productName.reset();
    m_objectSeen = false;
}

bool XDDImporter::write()
{
    emit progress(50);
    bool done = m_writer->write();
    noteDropped(m_writer->droppedCount());
    if (m_productName) {
        store()->setDescriptionLine(line());
        done &= store()->setDescriptionSetting(QStringLiteral("ProductName"), *m_productName);
    }
    return done;
}

void XDDImporter::read()
{
    QString fault;
    const auto bytes = SafeFile::read(fileName(), mostBytes, fault);
    if (!bytes) {
        reportError(tr("%1: The file can't be opened: %2.").arg(fileName(), fault));
        return;
    }
    const QByteArray &content = *bytes;
    QXmlStreamReader xml;
    if (const int line = XmlGuard::firstOverloadedTag(content); line > 0) {
        reportError(tr("%1:%2: An element has more than %3 attributes or %4 MB.")
                        .arg(fileName())
                        .arg(line)
                        .arg(XmlGuard::mostAttributes)
                        .arg(XmlGuard::longestPart / 1024 / 1024));
        return;
    }
    XmlGuard::feed(xml, content);
    readDocument(xml);
    if (!m_objectSeen) {
        qDebug() << "no cia 1311";
        reportError(tr("%1 has is not in CiA 1311 XDD format.").arg(fileName()));
    }
    if (xml.hasError()) {
        qDebug() << fileName() << xml.errorString();
        reportError(QStringLiteral("%1:%2:%3: %4")
                        .arg(fileName())
                        .arg(xml.lineNumber())
                        .arg(xml.columnNumber() + 1)
                        .arg(faultOf(xml)));
    }
}

void XDDImporter::readDocument(QXmlStreamReader &xml)
{
    int depth = 0;
    while (!xml.atEnd()) {
        switch (xml.readNext()) {
        case QXmlStreamReader::StartElement:
            if (++depth > deepestElement)
                xml.raiseError(
                    tr("More than %1 elements stand inside each other.").arg(deepestElement));
            else if (m_writer->entryCount() > mostEntries)
                xml.raiseError(tr("The file describes more than %1 sub-indices, which no device "
                                  "has.")
                                   .arg(mostEntries));
            else if (isCancelled())
                xml.raiseError(tr("The reading was stopped."));
            else if (xml.name() == QLatin1String("productName")) {
                m_productName = xml.readElementText(QXmlStreamReader::SkipChildElements).trimmed();
                --depth;
            } else {
                readElement(xml);
            }
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        case QXmlStreamReader::DTD:
            // Its entities could blow up a small file beyond all bounds.
            xml.raiseError(tr("The document declares its own grammar (DTD), which no device "
                              "description does."));
            break;
        default:
            break;
        }
    }
}

void XDDImporter::readElement(QXmlStreamReader &xml)
{
    if (xml.name() == QLatin1String("CANopenFDDataObject"))
        readObject(xml);
    else if (xml.name() == QLatin1String("CANopenFDDataElement") && m_index)
        readEntry(xml);
}

void XDDImporter::tell(Note kind, const QXmlStreamReader &xml, const QString &text)
{
    note(kind, static_cast<int>(xml.lineNumber()), text);
}

void XDDImporter::readObject(const QXmlStreamReader &xml)
{
    m_objectSeen = true;
    m_index.reset();
    const QString number = attribute(xml, "index");
    const auto index = hexNumber(number, 0xFFFF);
    if (!index) {
        tell(Note::PassedOver, xml,
             tr("The object index '%1' can't be read; the object is passed over.")
                 .arg(number.left(60)));
        return;
    }
    if (!isInRange(*index))
        return;
    m_index = static_cast<quint16>(*index);
    ObjectDataBase::INDEX_DATA_T data;
    data.name = attribute(xml, "name");
    if (data.name.isEmpty()) {
        data.name = IndexText::unnamedObject;
        tell(Note::Made, xml, tr("%1 has no name.").arg(IndexText::hex(*m_index)));
    }
    data.objecttype = attribute(xml, "objectType").toUInt();
    if (data.objecttype == 0) {
        data.objecttype = CANopen::VAR;
        tell(Note::Made, xml, tr("0x%1 has no object type; it is read as a variable.").arg(number));
    }
    data.datatype = static_cast<quint16>(
        hexNumber(attribute(xml, "dataType"), 0xFFFF).value_or(CAN::UNSIGNED8));
    data.category = CANopen::Optional;
    m_writer->addObject(*m_index, data);
}

void XDDImporter::readEntry(const QXmlStreamReader &xml)
{
    const QString number = attribute(xml, "subIndex");
    const auto subindex = hexNumber(number, 0xFF);
    if (!subindex) {
        tell(Note::PassedOver, xml,
             tr("The sub-index '%1' can't be read; the element is passed over.")
                 .arg(number.left(60)));
        return;
    }
    Entry entry;
    entry.name = attribute(xml, "name");
    if (entry.name.isEmpty()) {
        entry.name = IndexText::unnamedSubIndex;
        tell(Note::Made, xml, tr("%1sub%2 has no name.").arg(IndexText::hex(*m_index)).arg(number));
    }
    const QString type = attribute(xml, "dataType");
    entry.datatype = static_cast<quint16>(hexNumber(type, 0xFFFF).value_or(0));
    if (COHelper::index2DataTypeString(entry.datatype).isEmpty())
        tell(Note::Read, xml,
             tr("0x%1sub%2: the data type '%3' is not supported; it is kept as number %4.")
                 .arg(*m_index, 4, 16, QLatin1Char('0'))
                 .arg(number, type.left(60))
                 .arg(entry.datatype));
    entry.defaultvalue = attribute(xml, "defaultValue");
    entry.defaultineds = !entry.defaultvalue.isEmpty();
    entry.writedefaulttoeds = entry.defaultineds ? 1 : 0;
    takeAccess(entry, attribute(xml, "modification", QStringLiteral("true")),
               attribute(xml, "accessUSDO", QStringLiteral("ro")),
               attribute(xml, "accessPDO", QStringLiteral("no")));
    entry.lowlimit = attribute(xml, "lowLimit");
    entry.uplimit = attribute(xml, "highLimit");
    entry.limitineds = !entry.lowlimit.isEmpty() || !entry.uplimit.isEmpty();
    if (!entry.limitineds)
        COHelper::getDefaultLimits(entry.datatype, entry.lowlimit, entry.uplimit);
    m_writer->addEntry(*m_index, static_cast<quint8>(*subindex), entry);
}
