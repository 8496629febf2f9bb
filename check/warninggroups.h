#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// A set of warnings that a project can switch off as one.
struct WarningGroup
{
    /// Bits of `scope`: the protocols to which a group applies.
    enum Scope : quint8 { Common = 1, CANopen = 2, J1939 = 4, RawCAN = 8 };

    quint8 number = 0;
    QString key;         ///< as the project stores it
    QString title;       ///< translated
    QString description; ///< translated
    quint8 scope = 0;
};

/// In the order of their numbers.
[[nodiscard]] const QList<WarningGroup> &warningGroups();
/// Group numbers of a comma list of keys, in the order of the list. Reads any case, ignores what
/// is no key and drops duplicates.
[[nodiscard]] QByteArray parseWarningGroups(const QString &text);
/// The inverse: the keys in the order of the groups.
[[nodiscard]] QString formatWarningGroups(const QByteArray &groups);
