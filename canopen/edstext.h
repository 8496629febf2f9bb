#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

#include <functional>

/// The text of an EDS or DCF file cut into sections: nothing of what the sections mean. Line ends
/// may be LF, CR LF or CR; the text UTF-8 with or without byte order mark, UTF-16 with one, or
/// Latin-1. Sections are kept as places in the bytes, so a file takes about the memory of its size.
class EdsText
{
public:
    static constexpr qint64 mostBytes = qint64(64) * 1024 * 1024;
    static constexpr qsizetype mostSections = 500000;
    /// Lines that are longer are passed over.
    static constexpr qsizetype longestLine = 1024 * 1024;

    struct Section
    {
        QByteArrayView name; ///< between the brackets, trimmed
        int line = 0;        ///< of the header, from 1
        qsizetype begin = 0; ///< of the first line behind the header
        qsizetype end = 0;
    };

    /// One line of a section that is neither empty nor a comment.
    struct Entry
    {
        QByteArrayView key; ///< trimmed; empty if the line has no '='
        QByteArrayView value;
        int line = 0;
    };

    /// Reads a whole file. False if it can't be read or is too large or no text; see `error`.
    bool load(const QString &path);
    /// The same for bytes in memory.
    bool setContent(const QByteArray &content);
    /// Why the last reading failed: a sentence without the file's name.
    [[nodiscard]] QString error() const { return m_error; }

    [[nodiscard]] const QList<Section> &sections() const { return m_sections; }
    /// Line numbers that are too long to be read.
    [[nodiscard]] const QList<int> &longLines() const { return m_longLines; }
    /// The first line that stands before any section and isn't a comment; 0 if there is none.
    [[nodiscard]] int strayLine() const { return m_strayLine; }
    /// The first bytes, for a look at what kind of file it is.
    [[nodiscard]] QByteArrayView head() const
    {
        return QByteArrayView(m_content).first(headSize());
    }

    using EntryFunction = std::function<void(const Entry &)>;
    using CommentFunction = std::function<void(QByteArrayView)>;
    /// Calls `entry` for each entry of a section in order, and `description` for the text of each
    /// line that begins ";;".
    void forEachEntry(const Section &section, const EntryFunction &entry,
                      const CommentFunction &description = {}) const;
    /// Bytes of this text as characters.
    [[nodiscard]] QString decoded(QByteArrayView bytes) const
    {
        return m_isUtf8 ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes);
    }

    /// The same, of no more bytes than fit into a message.
    [[nodiscard]] QString excerpt(QByteArrayView bytes) const
    {
        return decoded(bytes.first(qMin<qsizetype>(bytes.size(), 60)));
    }

private:
    [[nodiscard]] qsizetype headSize() const { return qMin<qsizetype>(m_content.size(), 4096); }
    bool fail(const QString &text);
    void toUtf8();
    void unifyLineEnds();
    bool findSections();

    QByteArray m_content;
    bool m_isUtf8 = true;
    QList<Section> m_sections;
    QList<int> m_longLines;
    int m_strayLine = 0;
    QString m_error;
};
