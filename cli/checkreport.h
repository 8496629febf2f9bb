#pragma once

#include "check/checkfinding.h"

#include <QByteArray>
#include <QList>
#include <QString>

/// What a check of a project has found.
struct CheckReport
{
    QString projectPath;               ///< absolute
    int errorCount = 0;                ///< as the model check counts; some messages count as one
    bool isExternallyModified = false; ///< by something else than this tool, since it was saved
    QList<CheckFinding> findings;
};

/// What is told of a project that something else has changed since it was saved.
inline const QString externalChangeNote =
    QStringLiteral("Note: The project was changed by something else since it was saved.");

/// A kind of finding, as a build server lists it.
struct CheckRule
{
    QString identifier; ///< stable
    CheckClass kind = CheckClass::Error;
    quint8 group = 0;
    QString text; ///< plain, with "..." for what differs from finding to finding
    QString reason;
};

namespace CheckReports {

/// A line for each finding that the project does not suppress, and one with the sums.
[[nodiscard]] QByteArray text(const CheckReport &report);
/// One JSON object with all findings, those that the project suppresses included.
[[nodiscard]] QByteArray json(const CheckReport &report);
/// A log in the Static Analysis Results Interchange Format (SARIF) 2.1.0, an OASIS standard.
[[nodiscard]] QByteArray sarif(const CheckReport &report);

// --- What the formats share ---

/// Every rule of the model check.
[[nodiscard]] const QList<CheckRule> &rules();
/// Message without mark-up, in one line.
[[nodiscard]] QString plainMessage(const CheckFinding &finding);
/// "line0/0x1018/0x01", "line0/0x1018", "line0", or "project" for what belongs to no line.
[[nodiscard]] QString placeText(const CheckPlace &place);
/// Key of a warning group, empty for none.
[[nodiscard]] QString groupKey(quint8 group);
/// How many findings of a class the project does not suppress.
[[nodiscard]] int countOf(const CheckReport &report, CheckClass kind);
[[nodiscard]] int suppressedCount(const CheckReport &report);

} // namespace CheckReports
