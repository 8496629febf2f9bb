#include "generators/canopen/indicesgenerator.h"

#include "generators/base/codewriter.h"
#include "generators/canopen/indicesnames.h"
#include "store/canopen/canopentypes.h"
#include "store/canopen/helper.h"
#include "store/objectdatabase.h"

#include <QDebug>
#include <QRegularExpression>
#include <QThread>

#include <functional>

namespace {

using MetaData = QMap<std::pair<quint16, int>, ObjectDataBase::MetaData>;

constexpr int firstObject = 0x1000;
constexpr quint32 addressClaim = 60928;
constexpr quint32 controllerName = 2848; // NAME of controller application (SAE J1939-81)
constexpr quint32 extendedBit = 0x20000000;
constexpr const char *entriesName = "S_NUMBER_OF_ENTRIES";
constexpr const char *guard = "GEN_INDICES_H";

/// Numbers of PDOs whose name tells which node and PDO they belong to.
struct PdoRange
{
    const char *kind;
    quint16 first;
    quint16 last;
};

constexpr PdoRange receivePdos = {"RPDO", 0x1400, 0x15FF};
constexpr PdoRange transmitPdos = {"TPDO", 0x1800, 0x19FF};

/// Writes the file's lines; owns nothing.
class Writer
{
public:
    Writer(ObjectDataBase &store, CodeWriter &out, bool hasLines, const std::function<bool()> &stop)
        : m_store(store), m_out(out), m_hasLines(hasLines), m_stop(stop),
          m_names({QLatin1String(guard), QLatin1String(entriesName)})
    {
    }

    void writeObjects(quint8 line);
    void writePgns(quint8 line);
    void writeCanIds(quint8 line);

private:
    void define(const QString &name, const QString &value);
    void writeObject(quint8 line, quint16 index, const MetaData &metaData);
    void writePdoName(const QString &name, quint16 index);
    void writeSubs(quint8 line, quint16 index, const MetaData &metaData);
    void writePgn(quint8 line, quint32 number, quint8 direction);
    void writeAddressClaim();
    [[nodiscard]] static QString attribute(const MetaData &metaData, quint16 index, int sub,
                                           const QString &key);

    ObjectDataBase &m_store;
    CodeWriter &m_out;
    bool m_hasLines;
    const std::function<bool()> &m_stop;
    IndicesNames m_names;
    QString m_prefix; ///< of the line
    bool m_hasEntriesName = false;
};

void Writer::define(const QString &name, const QString &value)
{
    m_out << "#define " << name << '\t' << value << '\n';
}

QString Writer::attribute(const MetaData &metaData, quint16 index, int sub, const QString &key)
{
    const auto found = metaData.constFind({index, sub});
    return found == metaData.constEnd() ? QString() : found->value(key).trimmed();
}

void Writer::writeObjects(quint8 line)
{
    m_prefix = m_hasLines ? QStringLiteral("L%1_").arg(line) : QString();
    m_store.cacheAllSubs(line);
    const MetaData metaData = m_store.getAllMetaData(line);
    for (const quint16 index : m_store.getIndices(line, firstObject)) {
        if (m_stop()) {
            qDebug() << "Generation aborted";
            return;
        }
        writeObject(line, index, metaData);
        QThread::yieldCurrentThread();
    }
}

void Writer::writeObject(quint8 line, quint16 index, const MetaData &metaData)
{
    ObjectDataBase::INDEX_DATA_T data;
    m_store.getIndexData(line, index, data);
    QString name = attribute(metaData, index, -1, QStringLiteral("objectdefine"));
    if (name.isEmpty()) {
        name = Helper::substituteVariables(data.name, index, 0, line);
        if (name.isEmpty())
            name = QStringLiteral("unnamed object");
        name = IndicesNames::clean(QLatin1String("I_") + name);
    } else {
        name = IndicesNames::cleanWhole(name);
    }
    name = m_names.unique(m_prefix + name);
    define(name, QStringLiteral("0x%1u").arg(index, 4, 16, QLatin1Char('0')));
    writePdoName(name, index);
    if (data.objecttype == CANopen::ARRAY || data.objecttype == CANopen::RECORD)
        writeSubs(line, index, metaData);
}

/// A PDO that belongs to a node of the network gets a second name, for its number.
void Writer::writePdoName(const QString &name, quint16 index)
{
    const bool isReceive = index >= receivePdos.first && index <= receivePdos.last;
    const bool isTransmit = index >= transmitPdos.first && index <= transmitPdos.last;
    if (!isReceive && !isTransmit)
        return;
    static const QRegularExpression pattern(
        QStringLiteral("^I_([RT]PDO)_COMM_PAR_([0-9]+)_FOR_NODE_([0-9]+)_([A-Za-z0-9_]+)$"));
    const QRegularExpressionMatch match = pattern.match(name.mid(m_prefix.size()));
    const PdoRange &range = isReceive ? receivePdos : transmitPdos;
    if (!match.hasMatch() || match.captured(1) != QLatin1String(range.kind))
        return;
    const QString second = m_prefix + QStringList({match.captured(1), match.captured(3),
                                                   match.captured(4), match.captured(2)})
                                          .join(QLatin1Char('_'));
    if (m_names.take(second))
        define(second, QStringLiteral("%1u").arg(index - range.first + 1));
}

void Writer::writeSubs(quint8 line, quint16 index, const MetaData &metaData)
{
    for (const quint8 sub : m_store.getSubIndices(line, index)) {
        if (sub == 0) {
            if (!m_hasEntriesName)
                m_out << "#define  " << entriesName << "\t0x0u\n";
            m_hasEntriesName = true;
            continue;
        }
        QString name = attribute(metaData, index, sub, QStringLiteral("subdefine"));
        if (name.isEmpty()) {
            ObjectDataBase::SUBINDEX_DATA_T data;
            m_store.getSubIndexData(line, index, sub, data);
            name = Helper::substituteVariables(data.name, index, sub, line);
            if (name.isEmpty())
                name = QStringLiteral("unnamed subindex");
            name = IndicesNames::clean(QLatin1String("S_") + name);
        } else {
            name = IndicesNames::cleanWhole(name);
        }
        define(m_names.unique(m_prefix + name), QStringLiteral("%1u").arg(sub));
    }
}

void Writer::writePgns(quint8 line)
{
    m_prefix = m_hasLines ? QStringLiteral("L%1_").arg(line) : QString();
    m_store.loadSPNCache(line);
    for (const quint8 direction : {ObjectDataBase::receive, ObjectDataBase::transmit}) {
        for (const quint32 number : m_store.getPGNList(line, direction)) {
            if (m_stop()) {
                qDebug() << "Generation aborted";
                return;
            }
            if (number != addressClaim)
                writePgn(line, number, direction);
        }
    }
    writeAddressClaim();
    m_store.clearSPNCache();
}

void Writer::writePgn(quint8 line, quint32 number, quint8 direction)
{
    const auto comment = [this](quint32 value) {
        m_out << " /* 0x";
        m_out.hex(value) << " */\n";
    };
    const QString name =
        IndicesNames::clean(QLatin1String("PGN_") + m_store.getPGNName(line, number, direction));
    m_out << "#define " << m_names.unique(m_prefix + name) << '\t' << number << 'u';
    comment(number);
    for (const quint32 spn : m_store.getSPNList(line, number, direction)) {
        QString signal =
            m_prefix + IndicesNames::clean(QLatin1String("SPN_") +
                                           m_store.getSPNName(line, number, spn, direction));
        if (m_names.isTaken(signal))
            signal += QStringLiteral("_%1_%2").arg(number).arg(spn);
        define(m_names.unique(signal), QStringLiteral("%1u").arg(spn));
    }
}

/// The stack brings this message itself, so it has its names also where the project doesn't list
/// it.
void Writer::writeAddressClaim()
{
    const QString pgn = m_prefix + QLatin1String("PGN_ADDRESS_CLAIM");
    if (m_names.take(pgn)) {
        m_out << "#define " << pgn << '\t' << addressClaim << "u /* 0x";
        m_out.hex(addressClaim) << " */\n";
    }
    const QString spn = m_prefix + QLatin1String("SPN_NAME_OF_CONTROLLER_APPLICATION");
    if (m_names.take(spn))
        define(spn, QStringLiteral("%1u").arg(controllerName));
}

void Writer::writeCanIds(quint8 line)
{
    m_prefix = m_hasLines ? QStringLiteral("L%1_").arg(line) : QString();
    for (const quint8 direction : {ObjectDataBase::receive, ObjectDataBase::transmit}) {
        for (const quint32 id : m_store.getCANIDList(line, direction)) {
            if (m_stop()) {
                qDebug() << "Generation aborted";
                return;
            }
            const QString name = m_store.getCANIDName(line, id, direction).trimmed();
            const QString text = name.isEmpty() ? QStringLiteral("ID_%1").arg(id & ~extendedBit)
                                                : IndicesNames::clean(QLatin1String("ID_") + name);
            define(m_names.unique(m_prefix + text), QStringLiteral("0x%1u").arg(id, 0, 16));
        }
    }
}

struct Protocols
{
    bool hasJ1939;
    bool hasRawCAN;
};

Protocols protocolsOf(int lineType)
{
    return {.hasJ1939 = lineType == 2 || lineType == 5 || lineType == 7,
            .hasRawCAN = lineType == 4 || lineType == 6 || lineType == 7};
}

} // namespace

IndicesGenerator::IndicesGenerator(QObject *parent) : AbstractGenerator(parent) {}

bool IndicesGenerator::isOutputWritable()
{
    return isFileWritable(outputPath());
}

int IndicesGenerator::startGeneration()
{
    return start(QStringLiteral("gen_indices.h generator"));
}

QString IndicesGenerator::fileName() const
{
    return QStringLiteral("gen_indices.h");
}

void IndicesGenerator::writeContent(QIODevice &device)
{
    CodeWriter out(&device);
    out.banner(
        QStringLiteral(" *  CO index/J1939 PGN/raw CAN-ID  defines for %1 - generated by %2 %3\n"),
        m_projectName, m_toolVersion);
    out << "/* protect against multiple inclusion of the file */\n";
    out.beginGuard(QLatin1String(guard));

    const std::function<bool()> stop = [this] { return bool(stopRequested()); };
    const QList<quint8> lines = m_lines.isEmpty() ? store()->getLines() : m_lines;
    Writer writer(*store(), out, m_multiLine || m_generateML || lines.size() > 1, stop);
    for (const quint8 line : lines)
        writer.writeObjects(line);
    for (const quint8 line : lines) {
        const Protocols protocols = protocolsOf(store()->getLineType(line));
        if (protocols.hasJ1939)
            writer.writePgns(line);
        if (protocols.hasRawCAN)
            writer.writeCanIds(line);
    }
    out << "#endif /* " << guard << " */\n";
}
