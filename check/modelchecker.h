#pragma once

#include "canopen/linetype.h"
#include "check/checkpass.h"
#include "check/checksink.h"
#include "check/warninggroups.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>

#include <memory>
#include <vector>

class ObjectDataBase;
struct CheckContext;

/// The gate in front of every generation run: reports faults of the project, repairs a small
/// closed set of them in the store, and counts the errors.
///
/// One checker serves one run: `checkProject` first, then each line in ascending order. A first
/// error never stops a pass, so that one run shows all faults. Works on the thread of the caller
/// and runs its events once per object. A null store counts as an empty run.
class ModelChecker : public QObject
{
    Q_OBJECT

public:
    /// Key of the misc setting that holds the groups which the project suppresses.
    static constexpr QLatin1String SuppressedWarningGroups{"SuppressedWarningGroups"};

    explicit ModelChecker(QObject *parent = nullptr);
    ~ModelChecker() override;

    /// What holds for the whole project. `projectPath` is the project's folder, against which a
    /// relative path to the stack counts. Returns the number of errors.
    int checkProject(ObjectDataBase *database, const QString &projectPath);
    /// The passes of all protocols that the line speaks; a line that speaks none gets a warning.
    /// With the caches of the line filled (`ObjectDataBase::cacheAllSubs`) no object costs a
    /// statement. `*changed` (may be null) is set when a correction wrote to the store, and else
    /// left alone. Returns the number of errors.
    int checkLine(quint8 line, ObjectDataBase *database, bool *changed);
    /// The object dictionary and the CANopen settings of a line, whatever its type. Otherwise as
    /// `checkLine`.
    int checkCANopenLine(quint8 line, ObjectDataBase *database, bool *changed);

    /// Reads the suppressed groups of the project; every pass does so first.
    void loadSuppressedGroups(ObjectDataBase *database);
    /// Sends the text, or counts it if the project suppresses the group.
    void addGroupWarning(quint8 group, const QString &text);
    /// A line that follows a warning of the group: dropped with it, but not counted.
    void addGroupNote(quint8 group, const QString &text);
    /// What was withheld so far, as the lines of a log; empty if that is nothing.
    [[nodiscard]] QString suppressedSummary() const { return m_sink.suppressedSummary(); }
    /// All messages of the run in their order, those withheld included.
    [[nodiscard]] const QList<CheckFinding> &findings() const { return m_sink.findings(); }

    [[nodiscard]] static const QList<WarningGroup> &warningGroups() { return ::warningGroups(); }
    [[nodiscard]] static QByteArray parseWarningGroups(const QString &text)
    {
        return ::parseWarningGroups(text);
    }
    [[nodiscard]] static QString formatWarningGroups(const QByteArray &groups)
    {
        return ::formatWarningGroups(groups);
    }

signals:
    /// One message with its mark-up.
    void newError(QString errorText);

private:
    [[nodiscard]] CheckContext contextOf(ObjectDataBase &database, bool *changed = nullptr);
    int runLinePasses(const LineType &type, quint8 line, ObjectDataBase *database, bool *changed);

    CheckSink m_sink;
    std::vector<std::unique_ptr<CheckPass>> m_passes; ///< in the order of their table
    QString m_projectPath;
};
