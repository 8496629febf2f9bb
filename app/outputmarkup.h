#pragma once

#include <QList>
#include <QString>
#include <QTextCharFormat>

/// Messages of a run are plain text with a few tags in between. Reading them here, not as a whole
/// HTML document each, keeps their blanks and angle brackets, and is what makes thousands of them
/// fast.
namespace OutputMarkup {

/// A stretch of a message in one format.
struct Run
{
    QString text;
    QTextCharFormat format;
};

/// The runs of a message. Known are b, strong, i, em, u, font with a colour, and br; any other
/// angle bracket is text.
[[nodiscard]] QList<Run> runs(const QString &message);

} // namespace OutputMarkup
