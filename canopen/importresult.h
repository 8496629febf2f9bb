#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <array>

/// What came of reading a file: what was made, mended, passed over or lost, each with its line,
/// and why the reading failed if it did. Parsers begin it and importers go on. A file of nothing
/// but faults can't fill the memory with notes: from some point on they are only counted.
class ImportResult
{
public:
    enum class Kind : quint8 {
        Read,       ///< taken as it stands, though the file contradicts itself there
        Made,       ///< the file has nothing of it
        Mended,     ///< taken otherwise than it stands
        PassedOver, ///< not taken
        Lost        ///< said clearly, but nothing that a project can keep
    };
    struct Note
    {
        Kind kind = Kind::Read;
        int line = 0; ///< from 1; 0: about the whole file
        QString text;
    };
    static constexpr qsizetype mostNotes = 500;

    ImportResult() = default;
    explicit ImportResult(const QString &file) : m_file(file) {}

    void add(Kind kind, int line, const QString &text);
    /// A further reason why nothing or not all was read, as it is to be shown.
    void addError(const QString &text);
    /// The next note is only counted.
    [[nodiscard]] bool isFull() const { return m_notes.size() >= mostNotes; }

    [[nodiscard]] const QList<Note> &notes() const { return m_notes; }
    /// Notes of a kind, also those that were only counted.
    [[nodiscard]] qsizetype count(Kind kind) const { return m_counts[std::size_t(kind)]; }
    /// Empty if all went well; else a line a reason.
    [[nodiscard]] QString error() const { return m_error; }
    /// "file:line: text", without the number for line 0.
    [[nodiscard]] QString located(int line, const QString &text) const;
    /// All notes like this, and how many were only counted.
    [[nodiscard]] QStringList texts() const;

private:
    QString m_file;
    QList<Note> m_notes;
    std::array<qsizetype, 5> m_counts = {};
    QString m_error;
};
