#pragma once

#include "store/objectdatabase.h"
#include "tests/support/shippedprogram.h"

#include <functional>

/// The command line program on real files.
class CliProgram : public ShippedProgram
{
public:
    using Change = std::function<void(ObjectDataBase &store)>;

    CliProgram() : ShippedProgram(QStringLiteral("quillforge-cli")) {}
    /// Saves the example device with a change, by the edition of that name.
    void saveProject(const QString &name, const Change &change = {},
                     const QString &edition = QStringLiteral("CANopen Quillforge")) const;
};
