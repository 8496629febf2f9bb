#pragma once

#include "check/checkfinding.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include <functional>

/// Takes what the passes of a run find: counts the errors, decides what the project withholds, and
/// keeps every finding in its order. The only thing that a check reports to.
class CheckSink
{
public:
    /// Hears of each finding that is not withheld, at once.
    using Listener = std::function<void(const CheckFinding &)>;

    explicit CheckSink(Listener listener) : m_listener(std::move(listener)) {}

    /// `message` is one of a protocol's enumeration, `arguments` fill the markers of its text.
    template <typename Message>
    void report(Message message, const QStringList &arguments = {}, const CheckPlace &place = {})
    {
        const CheckDefinition &definition = definitionOf(message);
        m_errorCount += definition.errors;
        add({.definition = &definition, .place = place, .arguments = arguments});
    }
    /// The same of a fault that was reported before at another place: it does not count again.
    template <typename Message>
    void repeat(Message message, const QStringList &arguments = {}, const CheckPlace &place = {})
    {
        add({.definition = &definitionOf(message), .place = place, .arguments = arguments});
    }

    /// Of all passes so far.
    [[nodiscard]] int errorCount() const { return m_errorCount; }
    /// Those withheld included.
    [[nodiscard]] const QList<CheckFinding> &findings() const { return m_findings; }

    /// Groups, by number, whose messages are withheld from here on.
    void suppress(const QByteArray &groups) { m_suppressedGroups = groups; }
    [[nodiscard]] bool isSuppressed(quint8 group) const
    {
        return m_suppressedGroups.contains(static_cast<char>(group));
    }
    /// Counts a message of a suppressed group as withheld.
    void countSuppressed(quint8 group) { ++m_suppressedCounts[group]; }
    /// What was withheld so far, as the lines of a log; empty if that is nothing.
    [[nodiscard]] QString suppressedSummary() const;

private:
    void add(CheckFinding finding);

    Listener m_listener;
    QByteArray m_suppressedGroups;
    QMap<quint8, quint32> m_suppressedCounts;
    QList<CheckFinding> m_findings;
    int m_errorCount = 0;
};
