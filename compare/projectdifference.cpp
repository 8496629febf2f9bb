#include "compare/projectdifference.h"

#include <array>

namespace {

/// What stands behind an item's name, in the order of `DiffState`.
constexpr std::array<const char *, 4> stateSuffixes{"", " - current", " - other", " - different"};

QString shownNumber(const DiffItem &item)
{
    const auto hex = [&](int digits) {
        return QLatin1String("0x") +
               QStringLiteral("%1").arg(item.number, digits, 16, QLatin1Char('0'));
    };
    switch (item.kind) {
    case DiffItem::Kind::Object:
        return hex(4) + QLatin1String(" -");
    case DiffItem::Kind::Pgn:
        return hex(4) + QStringLiteral(" - %1").arg(item.number);
    case DiffItem::Kind::CanId: {
        // The flag of extended identifiers is no part of the number.
        constexpr quint32 extendedFlag = 1U << 29;
        const bool extended = item.number & extendedFlag;
        const quint32 id = item.number & ~extendedFlag;
        return QStringLiteral("0x%1 - %2").arg(id, extended ? 8 : 3, 16, QLatin1Char('0')).arg(id);
    }
    default:
        return QString::number(item.part) + QLatin1String(" -");
    }
}

} // namespace

QString DiffItem::text() const
{
    return shownNumber(*this) + u' ' + name + QLatin1String(stateSuffixes[std::size_t(state)]);
}

QString SettingDifference::property() const
{
    switch (table) {
    case Table::General:
    case Table::J1939:
        return key;
    case Table::Description:
        return QStringLiteral("Description: %1").arg(key);
    case Table::EnergyBus:
        return QStringLiteral("EnergyBus: %1").arg(key);
    case Table::Misc:
        return QStringLiteral("Project: %1").arg(key);
    case Table::Node:
        return QStringLiteral("Line %1: %2").arg(line).arg(key);
    case Table::Uds:
        return QStringLiteral("UDS line %1: 0x%2 %3")
            .arg(line)
            .arg(sid, 2, 16, QLatin1Char('0'))
            .arg(key);
    case Table::Line:
        break;
    }
    return QStringLiteral("Line %1").arg(line);
}
