#pragma once

#include <QString>

/// Whether an edit was done; one that was refused or failed has changed nothing and tells why, in a
/// sentence for the user.
class [[nodiscard]] EditResult
{
public:
    [[nodiscard]] static EditResult done() { return EditResult(QString()); }
    [[nodiscard]] static EditResult refused(const QString &reason) { return EditResult(reason); }

    [[nodiscard]] bool isDone() const { return m_reason.isEmpty(); }
    explicit operator bool() const { return isDone(); }
    /// Empty if it was done.
    [[nodiscard]] QString reason() const { return m_reason; }

private:
    explicit EditResult(const QString &reason) : m_reason(reason) {}

    QString m_reason;
};
