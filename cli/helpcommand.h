#pragma once

#include "cli/command.h"

/// Tells about the program or one of its commands.
class HelpCommand : public Command
{
public:
    [[nodiscard]] QString name() const override;
    [[nodiscard]] QString summary() const override;
    [[nodiscard]] QString description() const override;
    [[nodiscard]] QList<CommandArgument> arguments() const override;
    ExitCode run(const CommandCall &call, Console &console) const override;
};
