#include "edsreading.h"

#include <algorithm>

EdsReading::EdsReading(const QByteArray &text)
{
    QObject::connect(&parser, &EdsParser::newIndex,
                     [this](const CANopen::CANopenIndex &record) { objects.append(record); });
    QObject::connect(&parser, &EdsParser::newSubIndex,
                     [this](const CANopenSubindex &record) { entries.append(record); });
    loaded = parser.LoadEdsContent(text, QStringLiteral("a.eds"));
    error = parser.result().error();
    messages = parser.result().texts();
}

CANopen::CANopenIndex EdsReading::object(quint16 index) const
{
    CANopen::CANopenIndex found;
    for (const CANopen::CANopenIndex &record : objects) {
        if (record.index == index)
            found = record;
    }
    return found;
}

CANopenSubindex EdsReading::entry(quint16 index, quint8 subindex) const
{
    CANopenSubindex found;
    for (const CANopenSubindex &record : entries) {
        if (record.index == index && record.subindex == subindex)
            found = record;
    }
    return found;
}

bool EdsReading::tells(const QString &text) const
{
    return std::any_of(messages.begin(), messages.end(),
                       [&](const QString &message) { return message.contains(text); });
}

QStringList EdsReading::summary() const
{
    QStringList lines;
    for (const CANopen::CANopenIndex &object : objects)
        lines.append(QStringLiteral("%1 %2 %3 %4 %5")
                         .arg(object.index, 4, 16)
                         .arg(object.name)
                         .arg(object.objectCode)
                         .arg(object.compactSubObj)
                         .arg(object.description));
    for (const CANopenSubindex &entry : entries)
        lines.append(QStringLiteral("%1/%2 %3 %4 %5 %6 '%7' %8-%9")
                         .arg(entry.index, 4, 16)
                         .arg(entry.subindex)
                         .arg(entry.name)
                         .arg(entry.dataType)
                         .arg(entry.accessType)
                         .arg(entry.pdoMapping)
                         .arg(entry.defaultValue, entry.lowLimit, entry.highLimit) +
                     QStringLiteral(" '%1' '%2' %3")
                         .arg(entry.parameterValue, entry.denotation, entry.description));
    return lines;
}
