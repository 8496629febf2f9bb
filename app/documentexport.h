#pragma once

#include <QString>

class ObjectDataBase;

/// The documents that one line of a project can be written to, each into a file that the user
/// names. They are those that a generation writes into the project's folder.
namespace DocumentExport {

/// What one file dialog offers.
enum class Kind : quint8 { Eds, Xdd, Html, Table, Text };

struct Job
{
    ObjectDataBase *store = nullptr;
    quint8 line = 0;
    QString projectName; ///< as documents name it; that of the file if it is empty
    QString path;        ///< where the document is to go; its suffix chooses among a kind's forms
};

/// Title and filters of the dialog that asks for the file.
[[nodiscard]] QString title(Kind kind);
[[nodiscard]] QString filters(Kind kind);
/// File name with suffix for a project and, in a project of several lines, the line.
[[nodiscard]] QString fileName(Kind kind, const QString &projectName, quint8 line, bool multiLine);

/// Writes the document; events keep running meanwhile. A file that is there is replaced only by a
/// whole one. Gives the reason why it could not be written, empty if it was.
[[nodiscard]] QString write(Kind kind, const Job &job);

} // namespace DocumentExport
