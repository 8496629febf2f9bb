#pragma once

#include "canopen/canopenindex.h"
#include "canopen/canopensubindex.h"
#include "canopen/edsparser.h"

#include <QList>

/// All that the parser says about a text.
struct EdsReading
{
    explicit EdsReading(const QByteArray &text);

    bool loaded = false;
    QString error;
    QStringList messages;
    QList<CANopen::CANopenIndex> objects;
    QList<CANopenSubindex> entries;
    EdsParser parser;

    /// The last one that was sent, as an importer keeps it; an empty record if there is none.
    [[nodiscard]] CANopen::CANopenIndex object(quint16 index) const;
    [[nodiscard]] CANopenSubindex entry(quint16 index, quint8 subindex = 0) const;
    /// Whether one of the messages holds the text.
    [[nodiscard]] bool tells(const QString &text) const;
    /// Name and values of all records in one line each, for comparing two readings.
    [[nodiscard]] QStringList summary() const;
};
