#include "check/warninggroups.h"

#include <QCoreApplication>
#include <QStringList>

namespace {

struct Row
{
    quint8 number;
    const char *key;
    const char *title;
    quint8 scope;
    const char *description;
};

constexpr auto common = WarningGroup::Common;
constexpr auto canopen = WarningGroup::CANopen;
constexpr auto j1939 = WarningGroup::J1939;
constexpr auto raw = WarningGroup::RawCAN;

// clang-format off
constexpr Row rows[] = {
    {1, "WG_NAMING", QT_TRANSLATE_NOOP("ModelCheck", "Names and identifiers"), canopen | j1939 | raw,
     QT_TRANSLATE_NOOP("ModelCheck", "Missing names of objects, PGNs, SPNs and signals, variable names used more than once and names not following the naming rules.")},
    {2, "WG_IDENTITY", QT_TRANSLATE_NOOP("ModelCheck", "Identity and production readiness"), canopen | j1939,
     QT_TRANSLATE_NOOP("ModelCheck", "Use of the tolvex vendor-ID and manufacturer code and questionable settings of the identity object 0x1018.")},
    {3, "WG_LAYOUT", QT_TRANSLATE_NOOP("ModelCheck", "Mapping and signal layout"), canopen | j1939,
     QT_TRANSLATE_NOOP("ModelCheck", "Overlapping SPNs, mapped objects that do not fill their mapping entry and bitwise mapping conflicts.")},
    {4, "WG_IDS", QT_TRANSLATE_NOOP("ModelCheck", "COB-ID and CAN-ID assignment"), canopen | raw,
     QT_TRANSLATE_NOOP("ModelCheck", "PDOs not following the pre-defined connection set and CAN-IDs used for transmit and receive at the same time.")},
    {5, "WG_TIMING_LIMITS", QT_TRANSLATE_NOOP("ModelCheck", "Timing parameters and limit check"), canopen,
     QT_TRANSLATE_NOOP("ModelCheck", "Event timer and inhibit time combinations and objects with an activated limit check while it is disabled globally.")},
    {6, "WG_EDS", QT_TRANSLATE_NOOP("ModelCheck", "EDS/XDD documentation quality"), canopen,
     QT_TRANSLATE_NOOP("ModelCheck", "Default values that should be written into the EDS or XDD file but are not marked to be exported.")},
    {7, "WG_TOOLCHAIN", QT_TRANSLATE_NOOP("ModelCheck", "Protocol stack and toolchain"), common | canopen,
     QT_TRANSLATE_NOOP("ModelCheck", "Source files to be added to the project after a tool update and hints about the configured protocol stack folder.")},
    {8, "WG_CONFIG", QT_TRANSLATE_NOOP("ModelCheck", "Settings consistency"), common | canopen | j1939,
     QT_TRANSLATE_NOOP("ModelCheck", "Settings without effect, recommended objects that are missing and features enabled without the required configuration.")},
};
// clang-format on

} // namespace

const QList<WarningGroup> &warningGroups()
{
    static const QList<WarningGroup> groups = [] {
        QList<WarningGroup> list;
        for (const Row &row : rows)
            list.append({row.number, QLatin1String(row.key),
                         QCoreApplication::translate("ModelCheck", row.title),
                         QCoreApplication::translate("ModelCheck", row.description), row.scope});
        return list;
    }();
    return groups;
}

QByteArray parseWarningGroups(const QString &text)
{
    QByteArray numbers;
    const QStringList pieces = text.split(u',');
    for (const QString &piece : pieces) {
        for (const Row &row : rows) {
            const bool named =
                piece.trimmed().compare(QLatin1String(row.key), Qt::CaseInsensitive) == 0;
            if (named && !numbers.contains(static_cast<char>(row.number)))
                numbers.append(static_cast<char>(row.number));
        }
    }
    return numbers;
}

QString formatWarningGroups(const QByteArray &groups)
{
    QStringList keys;
    for (const Row &row : rows)
        if (groups.contains(static_cast<char>(row.number)))
            keys.append(QLatin1String(row.key));
    return keys.join(u',');
}
