#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

/// Sink of all messages of a generation run. Messages are rich-text fragments; a plain text has
/// line feeds and no mark-up.
class OutputHandlerBase : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    virtual void outputMessage(const QVariant &text) = 0;
    virtual void outputHtml(const QVariant &html) { outputMessage(html); }
    /// Everything that was put out so far, as text.
    [[nodiscard]] virtual QString loggingText() const = 0;
};
