#pragma once

#include <QList>
#include <QString>

#include <optional>

/// Where a message of a run leads to: the objects and settings that it names. Works on plain text,
/// without a window.
namespace OutputLinks {

/// What an anchor of the output pane stands for.
struct Target
{
    enum class Kind { Object, SubObject, Setting };

    Kind kind = Kind::Object;
    quint8 line = 0;
    quint16 index = 0;
    quint8 subindex = 0;
    QString search; ///< of a setting

    /// "LINE - 0xINDEX", "LINE - 0xINDEX-0xSUBINDEX", or the words to search for.
    [[nodiscard]] QString anchor() const;
    [[nodiscard]] static std::optional<Target> fromAnchor(const QString &anchor);
};

/// A stretch of a text that is a link.
struct Link
{
    qsizetype begin = 0;
    qsizetype length = 0;
    Target target;
};

/// The links of a text in their order; they don't overlap. `line` is the line that the message
/// belongs to; a message that names the line of its object goes before it.
[[nodiscard]] QList<Link> find(const QString &text, quint8 line);

/// The message is about an object of the dictionary.
[[nodiscard]] bool namesObject(const QString &text);

} // namespace OutputLinks
