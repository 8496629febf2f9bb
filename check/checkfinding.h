#pragma once

#include "check/checkdefinition.h"

#include <QString>
#include <QStringList>

/// Where a message belongs; -1 for what does not apply.
struct CheckPlace
{
    int line = -1;     ///< -1: the whole project
    int index = -1;    ///< the object's number: the index of CANopen
    int subindex = -1; ///< the number of its part: the subindex of CANopen
    /// As that of the definition, where messages of one kind differ in it.
    QString field = {};
};

/// One message of a run as data. Whatever shows it is made from this.
struct CheckFinding
{
    const CheckDefinition *definition = nullptr; ///< never null in a finding of a run
    CheckPlace place = {};
    QStringList arguments = {};
    bool suppressed = false; ///< withheld by the project's settings

    [[nodiscard]] QString identifier() const { return QLatin1String(definition->identifier); }
    /// Key or member at fault; empty if there is none.
    [[nodiscard]] QString field() const;
    /// The message with its mark-up: the lowest marker is replaced by the first argument, the next
    /// by the second and so on. All in one go: a marker within an argument stays as it is.
    [[nodiscard]] QString text() const;
};
