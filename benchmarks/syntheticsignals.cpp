#include "benchmarks/syntheticsignals.h"

#include "canopen/canopentypes.h"
#include "canopen/linetype.h"

namespace SyntheticSignals {

namespace {

constexpr quint32 firstPgn = 0xF000;
constexpr quint32 extended = 0x20000000;
constexpr quint16 bits = 8;

quint8 directionOf(int message)
{
    return message % 2 == 0 ? ObjectDataBase::transmit : ObjectDataBase::receive;
}

QString nameOf(const char *what, int number)
{
    return QString::fromLatin1(what) + u' ' + QString::number(number);
}

} // namespace

QList<ObjectDataBase::PGN> pgns(int count)
{
    QList<ObjectDataBase::PGN> list;
    for (int i = 0; i < count; ++i) {
        ObjectDataBase::PGN pgn;
        pgn.name = nameOf("Parameter group", i);
        pgn.number = firstPgn + quint32(i);
        pgn.priority = 6;
        pgn.cycleTime = quint16(10 * (i % 100));
        pgn.mappingCount = signalsOfMessage;
        pgn.direction = directionOf(i);
        list.append(pgn);
    }
    return list;
}

QList<ObjectDataBase::SPN> spns(int count)
{
    QList<ObjectDataBase::SPN> list;
    for (int i = 0; i < count * signalsOfMessage; ++i) {
        const int message = i / signalsOfMessage;
        ObjectDataBase::SPN spn;
        spn.pos = quint16(i % signalsOfMessage);
        spn.name = nameOf("Suspect parameter", i);
        spn.dataType = CAN::UNSIGNED8;
        spn.pgn = firstPgn + quint32(message);
        spn.direction = directionOf(message);
        spn.spn = quint32(i + 1);
        spn.varName = QStringLiteral("spn%1").arg(i + 1);
        spn.bitPosition = quint16(spn.pos * bits);
        list.append(spn);
    }
    return list;
}

QList<ObjectDataBase::CANID> canIds(int count)
{
    QList<ObjectDataBase::CANID> list;
    for (int i = 0; i < count; ++i) {
        ObjectDataBase::CANID message;
        message.id = extended | quint32(i);
        message.name = nameOf("Message", i);
        message.mappingCount = signalsOfMessage;
        message.direction = directionOf(i);
        list.append(message);
    }
    return list;
}

QList<ObjectDataBase::DataElement> dataElements(int count)
{
    QList<ObjectDataBase::DataElement> list;
    for (int i = 0; i < count * signalsOfMessage; ++i) {
        const int message = i / signalsOfMessage;
        ObjectDataBase::DataElement element;
        element.pos = quint16(i % signalsOfMessage);
        element.name = nameOf("Signal", i);
        element.dataType = CAN::UNSIGNED8;
        element.canId = extended | quint32(message);
        element.direction = directionOf(message);
        element.number = quint32(i % signalsOfMessage);
        element.varName = QStringLiteral("signal%1").arg(i);
        element.bitPos = quint16(element.pos * bits);
        list.append(element);
    }
    return list;
}

bool fill(ObjectDataBase &store, int count)
{
    return store.setGeneralSetting(LineType::settingKey(0),
                                   QString::number(int(LineType::J1939RawCan))) &&
           store.addPGNs(0, pgns(count), spns(count)) &&
           store.addCANIDs(0, canIds(count), dataElements(count));
}

} // namespace SyntheticSignals
