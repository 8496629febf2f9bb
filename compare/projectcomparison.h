#pragma once

#include "compare/projectdifference.h"

#include <QList>
#include <QMap>

#include <optional>

/// The comparison of the open project with another one, without a window. Reads both stores and
/// changes neither; they are not owned and have to outlive it. Belongs to the stores' thread.
///
/// What is asked for is read once and kept until `refresh`. Equal projects are recognised by their
/// content hash, so that nothing is read of them line by line.
class ProjectComparison
{
public:
    ProjectComparison(ObjectDataBase &current, ObjectDataBase &other);

    [[nodiscard]] ObjectDataBase &current() const { return m_current; }
    [[nodiscard]] ObjectDataBase &other() const { return m_other; }

    /// Whether marks of the tool and derived values make a difference, too. They don't at first:
    /// an edit that was taken back by hand leaves its mark behind.
    void setInternal(bool on);
    [[nodiscard]] bool withInternal() const { return m_internal; }
    /// Forgets what was read, after one of the projects was changed.
    void refresh();

    /// All differences of all lines and settings; 0 for equal projects.
    [[nodiscard]] int differenceCount();
    /// The lines of both projects in ascending order.
    [[nodiscard]] QList<quint8> lines();
    /// Objects from 0x1000 up, in order.
    [[nodiscard]] const QList<DiffItem> &objects(quint8 line);
    /// By number; `direction` is that of the store.
    [[nodiscard]] const QList<DiffItem> &pgns(quint8 line, quint8 direction);
    [[nodiscard]] const QList<DiffItem> &canIds(quint8 line, quint8 direction);
    /// The parts of an item of one of these lists, equal ones too; none for a part.
    [[nodiscard]] QList<DiffItem> parts(const DiffItem &item);
    /// The properties of an item or part on both sides, all of them with `setInternal`.
    [[nodiscard]] QList<PropertyRow> properties(const DiffItem &item);
    /// What differs beside objects and messages.
    [[nodiscard]] const QList<SettingDifference> &settings();

private:
    struct Line
    {
        std::optional<QList<DiffItem>> objects;
        QMap<quint8, QList<DiffItem>> pgns;
        QMap<quint8, QList<DiffItem>> canIds;
    };

    [[nodiscard]] int countLine(quint8 line);

    ObjectDataBase &m_current;
    ObjectDataBase &m_other;
    bool m_internal = false;
    QMap<quint8, Line> m_lines;
    std::optional<QList<SettingDifference>> m_settings;
};
