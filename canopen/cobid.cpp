#include "canopen/cobid.h"

#include <QRegularExpression>

namespace {

constexpr quint64 invalid = 0x80000000U;

/// Group 1: the node-ID in front, group 2: the number.
QRegularExpressionMatch matched(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("(\\$nodeid\\+)*(0x[0-9A-Fa-f]+)"),
                                            QRegularExpression::CaseInsensitiveOption);
    return pattern.match(text);
}

} // namespace

QString CobId::disabled(const QString &text)
{
    const QRegularExpressionMatch match = matched(text);
    bool ok = false;
    const quint64 number = match.captured(2).toULongLong(&ok, 16);
    if (!ok)
        return text;
    const QString digits = (number & invalid) != 0
                               ? match.captured(2)
                               : QStringLiteral("0x%1").arg(number | invalid, 8, 16, QChar(u'0'));
    return match.captured(0) == match.captured(2) ? digits : match.captured(1) + digits;
}

bool CobId::isDisabled(const QString &text)
{
    return (matched(text).captured(2).toULongLong(nullptr, 16) & invalid) != 0;
}
