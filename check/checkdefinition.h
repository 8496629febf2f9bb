#pragma once

#include <QString>

#include <cstddef>
#include <span>

/// What a message means for the run. Only errors stop a generation, only warnings, hints and
/// infos can be suppressed by their group.
enum class CheckClass : quint8 { Error, Warning, Hint, Info, Corrected, Note };

/// "Error", "Warning", "Hint", "Info", "Corrected", "Note".
[[nodiscard]] QString checkClassName(CheckClass kind);

/// One kind of message. Each protocol has an enumeration of its messages and a table of these in
/// the same order, and `definitionOf` leads from one to the other. All are constants, so a pointer
/// to one is good for ever.
struct CheckDefinition
{
    template <typename Message>
    constexpr CheckDefinition(Message message, const char *identifier, CheckClass kind,
                              quint8 group, quint8 errors, const char *field, const char *text,
                              const char *reason)
        : number(static_cast<quint8>(message)), kind(kind), group(group), errors(errors),
          identifier(identifier), field(field), text(text), reason(reason)
    {
    }

    /// Position in the table of its protocol.
    quint8 number;
    CheckClass kind;
    /// Warning group by which it is suppressed; 0 for what can't be suppressed.
    quint8 group;
    /// What each such message adds to the error count.
    quint8 errors;
    /// Stable for ever, as build servers key on it.
    const char *identifier;
    /// Key of the setting, or name of the member of the object's or subindex's record, that is at
    /// fault; empty if the fault is in the whole, or if the finding tells.
    const char *field;
    /// The message with its mark-up; `%1` and so on are filled in by `CheckFinding::text`.
    const char *text;
    const char *reason;
};

/// Whether a table holds every message of its enumeration, which ends with `Count`, in its order.
template <typename Message>
[[nodiscard]] constexpr bool standsInOrderOf(std::span<const CheckDefinition> table)
{
    for (std::size_t i = 0; i < table.size(); ++i)
        if (table[i].number != i)
            return false;
    return table.size() == static_cast<std::size_t>(Message::Count);
}
