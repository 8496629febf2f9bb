#include "resources/builder/valuecheck.h"

#include "canopen/cohelper.h"

#include <QRegularExpression>

#include <cmath>
#include <limits>

namespace {

bool isSigned(quint16 dataType)
{
    switch (dataType) {
    case CAN::INTEGER8:
    case CAN::INTEGER16:
    case CAN::INTEGER24:
    case CAN::INTEGER32:
    case CAN::INTEGER40:
    case CAN::INTEGER48:
    case CAN::INTEGER56:
    case CAN::INTEGER64:
        return true;
    default:
        return false;
    }
}

bool isReal(quint16 dataType)
{
    return dataType == CAN::REAL32 || dataType == CAN::REAL64;
}

QString realProblem(quint16 dataType, const QString &text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return QStringLiteral("'%1' is no number").arg(text);
    if (dataType == CAN::REAL32 && std::abs(value) > double(std::numeric_limits<float>::max()))
        return QStringLiteral("'%1' is too large for REAL32").arg(text);
    return {};
}

QString tooLarge(quint16 dataType, const QString &text)
{
    return QStringLiteral("'%1' is out of the range of %2")
        .arg(text, COHelper::index2DataTypeString(dataType));
}

QString signedProblem(quint16 dataType, int bits, const QString &text)
{
    bool ok = false;
    const qint64 value = text.toLongLong(&ok, 0);
    const qint64 highest = std::numeric_limits<qint64>::max() >> (64 - bits);
    return ok && value >= -highest - 1 && value <= highest ? QString() : tooLarge(dataType, text);
}

QString unsignedProblem(quint16 dataType, int bits, const QString &text)
{
    bool ok = false;
    const quint64 value = text.toULongLong(&ok, 0);
    const quint64 highest = std::numeric_limits<quint64>::max() >> (64 - bits);
    return ok && value <= highest ? QString() : tooLarge(dataType, text);
}

QString integerProblem(quint16 dataType, int bits, const QString &text)
{
    // A leading zero would make the number octal for the tool that reads it later.
    static const QRegularExpression number(QStringLiteral("^(0[xX][0-9A-Fa-f]+|-?[1-9][0-9]*|0)$"));
    static const QRegularExpression nodeId(QStringLiteral("^\\$NODEID *\\+ *(\\S+)$"));
    if (text.contains(QLatin1String("$NODEID"), Qt::CaseInsensitive)) {
        const QRegularExpressionMatch match = nodeId.match(text);
        if (!match.hasMatch() || isSigned(dataType))
            return QStringLiteral("'%1' should be like $NODEID+0x180, of an unsigned type")
                .arg(text);
        return integerProblem(dataType, bits, match.captured(1));
    }
    if (!number.match(text).hasMatch())
        return QStringLiteral("'%1' is no decimal or 0x number").arg(text);
    return isSigned(dataType) ? signedProblem(dataType, bits, text)
                              : unsignedProblem(dataType, bits, text);
}

} // namespace

QString ValueCheck::problem(quint16 dataType, const QString &text)
{
    if (text.isEmpty() || hasFreeLength(dataType))
        return {};
    if (isReal(dataType))
        return realProblem(dataType, text);
    return integerProblem(dataType, COHelper::getDataLengthBits(dataType), text);
}

bool ValueCheck::inOrder(quint16 dataType, const QString &a, const QString &b)
{
    if (isReal(dataType))
        return a.toDouble() <= b.toDouble();
    if (isSigned(dataType))
        return a.toLongLong(nullptr, 0) <= b.toLongLong(nullptr, 0);
    return a.toULongLong(nullptr, 0) <= b.toULongLong(nullptr, 0);
}

bool ValueCheck::hasFreeLength(quint16 dataType)
{
    return COHelper::getDataLengthBits(dataType) == 0;
}
