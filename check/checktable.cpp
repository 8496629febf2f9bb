#include "check/checktable.h"

#include "check/canopenmessages.h"
#include "check/commonmessages.h"
#include "check/udsmessages.h"

#include <array>

namespace {

constexpr std::array tables = {udsMessages, commonMessages, canopenMessages};

constexpr std::array classNames = {"Error", "Warning", "Hint", "Info", "Corrected", "Note"};

} // namespace

QString checkClassName(CheckClass kind)
{
    return QLatin1String(classNames.at(static_cast<std::size_t>(kind)));
}

const QList<CheckDefinition> &checkTable()
{
    static const QList<CheckDefinition> all = [] {
        QList<CheckDefinition> list;
        for (const auto table : tables)
            list.append(QList<CheckDefinition>(table().begin(), table().end()));
        return list;
    }();
    return all;
}
