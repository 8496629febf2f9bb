#pragma once

#include <QString>

/// What kind of message a run puts out. The messages carry no such mark but the words that they
/// begin with, so the words decide here, for counting and filtering.
namespace OutputClass {

enum class Kind : quint8 {
    Progress, ///< tells how far the run is
    Error,
    Warning,
    Note, ///< hints, infos, notes and corrections
};

/// The kind of a message with its mark-up. Besides the errors of the model check, files that could
/// not be written are errors; the line that sums up the check's errors is none itself.
[[nodiscard]] Kind of(const QString &message);

} // namespace OutputClass
