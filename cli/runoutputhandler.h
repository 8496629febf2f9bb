#pragma once

#include "generators/plaintextoutputhandler.h"

#include <QStringList>

/// Puts the messages of a generation run out on standard output and keeps those that tell of an
/// output which was not written. A run goes on after such a message and still counts as complete,
/// which is not enough for a build server.
class RunOutputHandler : public PlainTextOutputHandler
{
    Q_OBJECT

public:
    using PlainTextOutputHandler::PlainTextOutputHandler;

    void outputMessage(const QVariant &text) override;

    /// Messages of generators that failed, without mark-up.
    [[nodiscard]] const QStringList &failed() const { return m_failed; }
    /// Messages of outputs that can't be written, without mark-up.
    [[nodiscard]] const QStringList &notWritable() const { return m_notWritable; }

private:
    QStringList m_failed;
    QStringList m_notWritable;
};
