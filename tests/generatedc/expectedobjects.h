#pragma once

#include "store/objectdatabase.h"

#include <QMap>
#include <QString>

/// What the stand-in stack has to print of one subindex.
struct ExpectedSub
{
    QString type;
    QString attributes; ///< words, each with a bar behind it; COMPACT left out
    QString value;      ///< empty: whatever the application's variable holds
    QString defaultValue;
    QString low;
    QString high;
};

namespace ExpectedObjects {

/// By "line index:sub", straight from the project and without the generator's help.
[[nodiscard]] QMap<QString, ExpectedSub> of(ObjectDataBase &store);
/// The same from the program's output; `problems` takes the lines that tell of a fault.
[[nodiscard]] QMap<QString, ExpectedSub> parse(const QString &output, QStringList &problems);

} // namespace ExpectedObjects
