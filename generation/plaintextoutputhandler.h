#pragma once

#include "generators/base/outputhandlerbase.h"

#include <QStringList>

#include <cstdio>

/// Puts the messages of a run out as plain text, as they come: for runs without a window. Each
/// message ends its line and is flushed, so that a build log shows how far a run has got.
class PlainTextOutputHandler : public OutputHandlerBase
{
    Q_OBJECT

public:
    /// `stream` stays open and belongs to the caller; null only collects.
    explicit PlainTextOutputHandler(std::FILE *stream = stdout, QObject *parent = nullptr);

    void outputMessage(const QVariant &text) override;
    [[nodiscard]] QString loggingText() const override;

    /// A message without mark-up and with its entities decoded. Angle brackets that are no tag of
    /// rich text stay as they are.
    [[nodiscard]] static QString plainText(const QString &richText);

private:
    std::FILE *m_stream;
    QStringList m_lines;
};
