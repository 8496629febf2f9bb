#include "generators/base/commongeneratorhelper.h"

#include "store/projectsettings.h"

#include <algorithm>

namespace {

/// Constants behind the dialect's prefix. The older generation has one word for whatever holds raw
/// CAN.
QString protocolConstant(const StackDialect &dialect, const LineType &type)
{
    QStringList words;
    const auto add = [&](bool isSpoken, const char *name) {
        if (isSpoken)
            words.append(QLatin1String(dialect.protocolPrefix) + QLatin1String(name));
    };
    const bool isRawCanOnly = type.hasRawCan && !dialect.isV4;
    add(type.hasJ1939 && !isRawCanOnly, "J1939");
    add(type.hasCANopen && !isRawCanOnly, "CANOPEN");
    add(type.hasRawCan, "RAWCAN");
    add(words.isEmpty(), "UNKNOWN");
    return words.join(QLatin1String(" | "));
}

} // namespace

CommonGeneratorHelper::CommonGeneratorHelper(ObjectDataBase *store, bool isV4)
    : m_store(store), m_dialect(isV4 ? StackDialect::v4() : StackDialect::v3())
{
}

int CommonGeneratorHelper::number(const char *key) const
{
    return m_store ? static_cast<int>(ProjectSettings(*m_store).number(key)) : 0;
}

quint32 CommonGeneratorHelper::j1939Number(const char *key) const
{
    const SettingKey j1939 = SettingKey::j1939(QLatin1String(key));
    return m_store ? ProjectSettings(*m_store).count(j1939) : 0;
}

int CommonGeneratorHelper::initStructureVersion(InitStructure structure) const
{
    switch (structure) {
    case InitStructure::Common:
        return 1;
    case InitStructure::RawCAN:
    case InitStructure::CANopen:
    case InitStructure::J1939:
        return 6;
    case InitStructure::UDS:
        return number("udsserver_version");
    }
    return 0;
}

QList<quint8> CommonGeneratorHelper::lines() const
{
    QList<quint8> result = m_store ? m_store->getLines() : QList<quint8>();
    result.removeIf([](quint8 line) { return line >= LineType::maximumLines; });
    return result;
}

bool CommonGeneratorHelper::isBootLoader() const
{
    return number("uds_bl_setting") == 1 && !isMultiLine();
}

bool CommonGeneratorHelper::hasUds(quint8 line) const
{
    if (!m_store)
        return false;
    const ProjectSettings settings(*m_store);
    return settings.lineNumber("udsserver_supported", line) > 0 ||
           settings.lineNumber("udsclient_supported", line) > 0;
}

bool CommonGeneratorHelper::hasUds() const
{
    const QList<quint8> all = lines();
    return std::any_of(all.begin(), all.end(), [this](quint8 line) { return hasUds(line); });
}

bool CommonGeneratorHelper::hasIsoTp() const
{
    return number("isotp_supported") > 0 || hasUds();
}

bool CommonGeneratorHelper::isSafetyMessage(const ObjectDataBase::PGN &pgn) const
{
    return pgn.isSafe != 0 && j1939Number("safetysupport") > 0;
}

quint32 CommonGeneratorHelper::sourceAddresses(const ObjectDataBase::PGN &pgn) const
{
    if (pgn.direction != ObjectDataBase::receive)
        return 1;
    const quint32 addresses =
        isSafetyMessage(pgn) ? j1939Number("sdm_rec_addr_cnt") : pgn.multiSourceAddress;
    return std::max<quint32>(addresses, 1);
}

QString CommonGeneratorHelper::protocolWord(quint8 line) const
{
    const QString uds = QLatin1String(m_dialect.protocolPrefix) + QLatin1String("UDS");
    QString word = isBootLoader()
                       ? uds
                       : protocolConstant(m_dialect, m_store ? m_store->lineType(line)
                                                             : LineType::of(LineType::Unknown));
    if (hasUds(line))
        word += QLatin1String(" | ") + uds;
    return word;
}

QString CommonGeneratorHelper::commonInit() const
{
    QList<quint8> all = lines();
    if (all.isEmpty())
        all.append(0);
    QStringList words;
    for (const quint8 line : std::as_const(all))
        words.append(protocolWord(line));

    QString text = QStringLiteral("/* core initialization settings */\n"
                                  "%1    commonInitVars = {\n"
                                  "\t%2u,\n"
                                  "\t{ %3REC_BUFFER_COUNTS },\n"
                                  "\t{ %3TR_BUFFER_COUNTS },\n"
                                  "\t{ %3COB_COUNTS }, \n")
                       .arg(QLatin1String(m_dialect.commonInitType))
                       .arg(initStructureVersion(InitStructure::Common))
                       .arg(QLatin1String(m_dialect.prefix));
    if (hasIsoTp())
        text += QLatin1String("\t{ ISOTP_CLIENT_COUNTS },\n\t{ ISOTP_SERVER_COUNTS },\n");
    text += QLatin1String("\t{ ") + words.join(QLatin1String(", "));
    if (number("canfd_supported") > 0)
        text += QLatin1String(" },\n\t{ ") + QStringLiteral("CO_TRUE, ").repeated(all.size());
    return text + QLatin1String(" }\n};\n\n");
}
