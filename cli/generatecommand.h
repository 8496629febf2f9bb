#pragma once

#include "cli/command.h"

/// Checks a project and writes its outputs, as the window does.
class GenerateCommand : public Command
{
public:
    [[nodiscard]] QString name() const override;
    [[nodiscard]] QString summary() const override;
    [[nodiscard]] QString description() const override;
    [[nodiscard]] QList<CommandArgument> arguments() const override;
    [[nodiscard]] QList<CommandOption> options() const override;
    ExitCode run(const CommandCall &call, Console &console) const override;
};
