#pragma once

#include "store/objectdatabase.h"

#include <QList>
#include <QString>

/// Where an item of two compared projects is: in one of them, or in both.
enum class DiffState : quint8 { Equal, Current, Other, Different };

/// One property of a compared pair, in words. The text of a side that has no such item is empty.
struct PropertyRow
{
    QString property;
    QString current;
    QString other;
    bool differs = false;
};

/// An object, message or part of one, in one of the projects or in both.
struct DiffItem
{
    enum class Kind : quint8 { Object, SubIndex, Pgn, Spn, CanId, DataElement };

    Kind kind = Kind::Object;
    DiffState state = DiffState::Equal;
    quint8 line = 0;
    quint8 direction = 0; ///< of messages and signals
    quint32 number = 0;   ///< object index, PGN or CAN-ID
    quint32 part = 0;     ///< subindex, SPN or number of the data element
    QString name;         ///< of the project that has it; of the current one if both have
    /// What is to be done to make both equal: a whole item that one side lacks is one, else the
    /// record of the item is one and each of its parts is.
    int differences = 0;

    [[nodiscard]] bool isPart() const
    {
        return kind == Kind::SubIndex || kind == Kind::Spn || kind == Kind::DataElement;
    }
    /// The text of a tree's row, such as "0x2000 - Speed - different".
    [[nodiscard]] QString text() const;
};

/// A setting that differs. A key that a project lacks counts as one with an empty value.
struct SettingDifference
{
    enum class Table : quint8 { General, Description, EnergyBus, J1939, Misc, Node, Uds, Line };

    Table table = Table::General;
    quint8 line = 0; ///< of nodes, UDS services and lines
    quint8 sid = 0;  ///< of UDS services
    QString key;     ///< as the project has it; column of nodes and UDS services
    QString current;
    QString other;

    /// The text of a table's row: the key, with the table's name ahead of it where it is not
    /// one of the general settings.
    [[nodiscard]] QString property() const;
};
