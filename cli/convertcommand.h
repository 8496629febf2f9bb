#pragma once

#include "cli/command.h"

/// Turns a project from its database form into its text form or back.
class ConvertCommand : public Command
{
public:
    [[nodiscard]] QString name() const override;
    [[nodiscard]] QString summary() const override;
    [[nodiscard]] QString description() const override;
    [[nodiscard]] QList<CommandArgument> arguments() const override;
    ExitCode run(const CommandCall &call, Console &console) const override;
};
