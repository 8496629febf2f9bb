#pragma once

#include <QByteArray>
#include <QList>
#include <QStringView>

#include <unordered_map>

/// Names of macros in one file: formed from what users type, and never given twice.
class IndicesNames
{
public:
    /// Names that the file uses itself are reserved.
    explicit IndicesNames(const QList<QByteArray> &reserved);

    /// The name, or the name with "_1", "_2" and so on behind it, whichever is free first.
    [[nodiscard]] QByteArray unique(const QByteArray &name);
    /// Takes the name if it is free; false if it was given before.
    bool take(const QByteArray &name);
    [[nodiscard]] bool isTaken(const QByteArray &name) const { return m_uses.contains(name); }

    /// `prefix` and the text in upper case, with underscores for everything that no identifier
    /// holds and runs of underscores shrunk to one. Behind an empty prefix a leading digit gets
    /// an underscore before it.
    [[nodiscard]] static QByteArray clean(const char *prefix, QStringView text);

private:
    // Nodes that stay where they are: far quicker here than a hash that moves its entries.
    std::unordered_map<QByteArray, quint32> m_uses; ///< name to the last number behind it
};
