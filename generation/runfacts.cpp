#include "generation/runfacts.h"

#include "canopen/linetype.h"
#include "generators/base/stackdialect.h"
#include "store/objectdatabase.h"
#include "store/projectsettings.h"

#include <algorithm>

namespace {

constexpr quint8 firstLineWithoutProtocol = 240;

} // namespace

void RunFacts::classify()
{
    activeLines = store->getLines();
    activeLines.removeIf([](quint8 line) { return line >= ObjectDataBase::comparisonLine; });
    std::sort(activeLines.begin(), activeLines.end());
    multiLine = activeLines.size() > 1;
    protocols = {};
    for (const quint8 line : std::as_const(activeLines)) {
        if (line < firstLineWithoutProtocol)
            protocols |= lineProtocols(line);
    }
    bootLoaderOnly =
        !multiLine && ProjectSettings(*store).text("uds_bl_setting") == QLatin1String("1");
}

Protocols RunFacts::lineProtocols(quint8 line) const
{
    const LineType &type = LineType::of(store->getLineType(line));
    Protocols result;
    result.setFlag(Protocol::CANopen, type.hasCANopen);
    result.setFlag(Protocol::J1939, type.hasJ1939);
    result.setFlag(Protocol::RawCAN, type.hasRawCan);
    return result;
}

bool RunFacts::isMultiProtocol() const
{
    const bool hasRawCan = protocols.testFlag(Protocol::RawCAN);
    return protocols.testFlag(Protocol::CANopen) ? protocols.testFlag(Protocol::J1939) || hasRawCan
                                                 : hasRawCan;
}

bool RunFacts::isV4() const
{
    return StackDialect::of(store.get()).isV4;
}

QString RunFacts::stackGeneration() const
{
    return isV4() ? QStringLiteral("V4") : QStringLiteral("V3");
}

int RunFacts::general(const char *key) const
{
    return static_cast<int>(ProjectSettings(*store).number(key));
}

int RunFacts::j1939(const char *key) const
{
    return static_cast<int>(ProjectSettings(*store).number(SettingKey::j1939(QLatin1String(key))));
}
