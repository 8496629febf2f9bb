#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// The command line, read once.
///
/// Options are whole arguments, compared case-sensitively, anywhere in the list; a value is the
/// argument directly behind the first occurrence of its option. An option without a value holds
/// an empty text, one that isn't given holds nothing.
struct StartOptions
{
    bool hidden = false;           ///< `-hidden`
    bool skipVersionNotes = false; ///< `-now`, or implied by `-tsk`
    bool networkTool = false;      ///< `-tsk`
    bool generate = false;         ///< `-g`
    bool save = false;             ///< `-s`

    std::optional<QString> importFile;        ///< `-i`
    std::optional<QString> pgnProject;        ///< `-j`
    QString pgnMode = QStringLiteral("keep"); ///< `-o`, read with `-j`; has no effect
    std::optional<QString> importHandlerFile; ///< `--importfile`
    std::optional<QString> modifierFile;      ///< `-dbmod`

    /// The project named by the first argument; nothing if the normal start path is to run. Any
    /// first argument counts as a file name unless it is `-j1939` or contains "--".
    std::optional<QString> project;

    /// `arguments` begin with the program's name.
    [[nodiscard]] static StartOptions parse(const QStringList &arguments);
};
