#pragma once

#include <QMap>
#include <QString>
#include <QStringView>

/// The one table of data types behind `COHelper`. Internal to this folder.
namespace DataTypeTable {

struct Type
{
    quint16 number = 0;
    QString name;
    QString shortName;
    quint8 bits = 0; ///< 0: as long as its value, or no such type
    QString low;     ///< decimal; empty for types without limits
    QString high;
};

/// The type of a number; for unknown numbers one with number 0 and nothing else.
[[nodiscard]] const Type &byNumber(quint16 number);
/// The type of a name or number as files write it, 0 if nothing fits.
[[nodiscard]] quint16 numberOf(QStringView text);
[[nodiscard]] const QMap<quint16, QString> &names();

} // namespace DataTypeTable
