#pragma once

#include <QHash>
#include <QString>

/// Names of macros in one file: formed from what users type, and never given twice.
class IndicesNames
{
public:
    /// Names that the file uses itself are reserved.
    explicit IndicesNames(const QStringList &reserved);

    /// The name, or the name with "_1", "_2" and so on behind it, whichever is free first.
    [[nodiscard]] QString unique(const QString &name);
    /// Takes the name if it is free; false if it was given before.
    bool take(const QString &name);
    [[nodiscard]] bool isTaken(const QString &name) const { return m_uses.contains(name); }

    /// Upper case, with underscores for everything that no identifier holds, in one pass with
    /// runs of underscores shrunk to one.
    [[nodiscard]] static QString clean(const QString &text);
    /// The same with an underscore before a leading digit, for names without a prefix of ours.
    [[nodiscard]] static QString cleanWhole(const QString &text);

private:
    QHash<QString, quint32> m_uses; ///< name to the last number behind it
};
