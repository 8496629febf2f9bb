#include "generators/headers/indicesgenerator.h"

#include "canopen/canopentypes.h"
#include "canopen/helper.h"
#include "canopen/indextext.h"
#include "canopen/j1939numbers.h"
#include "canopen/objectranges.h"
#include "generators/base/codewriter.h"
#include "generators/base/commongeneratorhelper.h"
#include "generators/headers/indicesnames.h"
#include "signals/signalwalk.h"
#include "store/objectdatabase.h"

#include <QDebug>
#include <QRegularExpression>
#include <QThread>

#include <functional>

namespace {

constexpr quint32 controllerName = 2848; // NAME of controller application (SAE J1939-81)
constexpr const char *entriesName = "S_NUMBER_OF_ENTRIES";
constexpr const char *guard = "GEN_INDICES_H";

/// Numbers of PDOs whose name tells which node and PDO they belong to.
struct PdoRange
{
    const char *kind;
    ObjectRange objects;
};

constexpr PdoRange receivePdos = {"RPDO", ObjectRanges::receivePdos};
constexpr PdoRange transmitPdos = {"TPDO", ObjectRanges::transmitPdos};

/// Writes the file's lines; owns nothing.
class Writer
{
public:
    Writer(ObjectDataBase &store, CodeWriter &out, bool hasLines, const std::function<bool()> &stop)
        : m_store(store), m_out(out), m_hasLines(hasLines), m_stop(stop),
          m_names({guard, entriesName})
    {
    }

    void writeObjects(quint8 line);
    void writePgns(quint8 line);
    void writeCanIds(quint8 line);

private:
    void define(const QByteArray &name, const QByteArray &value);
    [[nodiscard]] QByteArray prefixed(const QByteArray &name) const { return m_prefix + name; }
    void beginLine(quint8 line);
    void writeObject(quint8 line, quint16 index);
    void writePdoName(const QByteArray &name, quint16 index);
    void writeSubs(quint8 line, quint16 index);
    void writePgn(const SignalWalk::Pgn &pgn);
    void writeAddressClaim();
    /// The user's own define in the metadata, or the name behind its prefix.
    [[nodiscard]] static QByteArray nameOf(const ObjectDataBase::MetaData &metaData,
                                           const QString &attribute, const char *prefix,
                                           const QString &name, const QString &nameless);

    ObjectDataBase &m_store;
    CodeWriter &m_out;
    bool m_hasLines;
    const std::function<bool()> &m_stop;
    IndicesNames m_names;
    QByteArray m_prefix; ///< of the line
    bool m_hasEntriesName = false;
};

void Writer::define(const QByteArray &name, const QByteArray &value)
{
    m_out << "#define " << name.constData() << '\t' << value.constData() << '\n';
}

void Writer::beginLine(quint8 line)
{
    m_prefix = m_hasLines ? 'L' + QByteArray::number(line) + '_' : QByteArray();
}

QByteArray Writer::nameOf(const ObjectDataBase::MetaData &metaData, const QString &attribute,
                          const char *prefix, const QString &name, const QString &nameless)
{
    if (const auto own = metaData.constFind(attribute);
        own != metaData.constEnd() && !own->trimmed().isEmpty())
        return IndicesNames::clean("", own->trimmed());
    return IndicesNames::clean(prefix, name.isEmpty() ? nameless : name);
}

void Writer::writeObjects(quint8 line)
{
    beginLine(line);
    for (const quint16 index : m_store.getIndices(line, ObjectRanges::device.low)) {
        if (m_stop()) {
            qDebug() << "Generation aborted";
            return;
        }
        writeObject(line, index);
        QThread::yieldCurrentThread();
    }
}

void Writer::writeObject(quint8 line, quint16 index)
{
    static const QString attribute = QStringLiteral("objectdefine");
    static const QString nameless = IndexText::unnamedObject;
    ObjectDataBase::INDEX_DATA_T data;
    m_store.getIndexData(line, index, data);
    const QByteArray name = m_names.unique(
        prefixed(nameOf(data.metadata, attribute, "I_",
                        Helper::substituteVariables(data.name, index, 0, line), nameless)));
    define(name, IndexText::hex(index).toLatin1() + 'u');
    writePdoName(name, index);
    if (data.objecttype == CANopen::ARRAY || data.objecttype == CANopen::RECORD)
        writeSubs(line, index);
}

/// A PDO that belongs to a node of the network gets a second name, for its number.
void Writer::writePdoName(const QByteArray &name, quint16 index)
{
    const bool isReceive = receivePdos.objects.contains(index);
    const bool isTransmit = transmitPdos.objects.contains(index);
    if (!isReceive && !isTransmit)
        return;
    static const QRegularExpression pattern(
        QStringLiteral("^I_([RT]PDO)_COMM_PAR_([0-9]+)_FOR_NODE_([0-9]+)_([A-Za-z0-9_]+)$"));
    const QRegularExpressionMatch match =
        pattern.match(QString::fromLatin1(name.mid(m_prefix.size())));
    const PdoRange &range = isReceive ? receivePdos : transmitPdos;
    if (!match.hasMatch() || match.captured(1) != QLatin1String(range.kind))
        return;
    const QByteArray second = prefixed(
        QStringList({match.captured(1), match.captured(3), match.captured(4), match.captured(2)})
            .join(QLatin1Char('_'))
            .toLatin1());
    if (m_names.take(second))
        define(second, QByteArray::number(index - range.objects.low + 1) + 'u');
}

void Writer::writeSubs(quint8 line, quint16 index)
{
    static const QString attribute = QStringLiteral("subdefine");
    static const QString nameless = IndexText::unnamedSubIndex;
    for (const quint8 sub : m_store.getSubIndices(line, index)) {
        if (sub == 0) {
            if (!m_hasEntriesName)
                m_out << "#define  " << entriesName << "\t0x0u\n";
            m_hasEntriesName = true;
            continue;
        }
        ObjectDataBase::SUBINDEX_DATA_T data;
        m_store.getSubIndexData(line, index, sub, data);
        const QByteArray name =
            nameOf(data.metadata, attribute, "S_",
                   Helper::substituteVariables(data.name, index, sub, line), nameless);
        define(m_names.unique(prefixed(name)), QByteArray::number(sub) + 'u');
    }
}

void Writer::writePgns(quint8 line)
{
    beginLine(line);
    const auto write = [&](const SignalWalk::Pgn &pgn) {
        if (!pgn.isAddressClaim())
            writePgn(pgn);
    };
    if (!SignalWalk::pgns(m_store, line, write, m_stop)) {
        qDebug() << "Generation aborted";
        return;
    }
    writeAddressClaim();
}

void Writer::writePgn(const SignalWalk::Pgn &pgn)
{
    const quint32 number = pgn.group.number;
    const QByteArray name = m_names.unique(prefixed(IndicesNames::clean("PGN_", pgn.group.name)));
    m_out << "#define " << name.constData() << '\t' << number << "u /* 0x";
    m_out.hex(number) << " */\n";
    for (const ObjectDataBase::SPN &spn : pgn.spns) {
        QByteArray signal = prefixed(IndicesNames::clean("SPN_", spn.name));
        if (m_names.isTaken(signal))
            signal += '_' + QByteArray::number(number) + '_' + QByteArray::number(spn.spn);
        define(m_names.unique(signal), QByteArray::number(spn.spn) + 'u');
    }
}

/// The stack brings this message itself, so it has its names also where the project doesn't list
/// it.
void Writer::writeAddressClaim()
{
    const QByteArray pgn = prefixed("PGN_ADDRESS_CLAIM");
    if (m_names.take(pgn)) {
        m_out << "#define " << pgn.constData() << '\t' << J1939::addressClaimed << "u /* 0x";
        m_out.hex(J1939::addressClaimed) << " */\n";
    }
    const QByteArray spn = prefixed("SPN_NAME_OF_CONTROLLER_APPLICATION");
    if (m_names.take(spn))
        define(spn, QByteArray::number(controllerName) + 'u');
}

void Writer::writeCanIds(quint8 line)
{
    beginLine(line);
    const auto write = [&](const SignalWalk::CanId &canId) {
        const quint32 id = canId.message.id;
        const QString name = canId.message.name.trimmed();
        const QByteArray text = name.isEmpty() ? "ID_" + QByteArray::number(canId.identifier())
                                               : IndicesNames::clean("ID_", name);
        define(m_names.unique(prefixed(text)), "0x" + QByteArray::number(id, 16) + 'u');
    };
    if (!SignalWalk::canIds(m_store, line, write, m_stop))
        qDebug() << "Generation aborted";
}

} // namespace

IndicesGenerator::IndicesGenerator(QObject *parent)
    : FileGenerator({"gen_indices.h", "gen_indices.h generator"}, parent)
{
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
    const QList<quint8> lines =
        m_lines.isEmpty() ? CommonGeneratorHelper(store()).lines() : m_lines;
    Writer writer(*store(), out, m_multiLine || m_generateML || lines.size() > 1, stop);
    for (const quint8 line : lines)
        writer.writeObjects(line);
    for (const quint8 line : lines) {
        const LineType &type = store()->lineType(line);
        if (type.hasJ1939)
            writer.writePgns(line);
        if (type.hasRawCan)
            writer.writeCanIds(line);
    }
    out << "#endif /* " << guard << " */\n";
}
