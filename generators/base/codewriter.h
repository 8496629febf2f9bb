#pragma once

#include <QByteArray>
#include <QLatin1String>
#include <QString>
#include <QStringEncoder>
#include <QStringList>

#include <concepts>

class QIODevice;

/// Writes text of generated files, in UTF-8 and in large pieces, and knows the forms that repeat
/// in them. Line ends are line feeds; the device turns them into the platform's.
///
/// Write errors are those of the device; whoever opened it asks at the end.
class CodeWriter
{
public:
    /// With a device the text goes there, at the latest when the writer ends; without one it is
    /// collected and `text` gives it.
    explicit CodeWriter(QIODevice *device = nullptr);
    ~CodeWriter();
    Q_DISABLE_COPY(CodeWriter)

    CodeWriter &operator<<(QStringView text);
    CodeWriter &operator<<(const QString &text) { return *this << QStringView(text); }
    CodeWriter &operator<<(QLatin1String text);
    /// UTF-8.
    CodeWriter &operator<<(const char *text);
    CodeWriter &operator<<(char character);
    CodeWriter &operator<<(std::integral auto number)
    {
        return appendNumber(static_cast<qlonglong>(number));
    }
    CodeWriter &operator<<(quint64 number);
    /// Lower-case hexadecimal digits without prefix, zero filled.
    CodeWriter &hex(quint64 number, int digits = 0);

    void flush();
    [[nodiscard]] QString text() const { return QString::fromUtf8(m_buffer); }

    /// The head of a generated C file: a block comment with `title` filled with project name (%1),
    /// application name (%2) and tool version (%3), and the date. The title is one whole line with
    /// its leading " * " and its line feed. The date is that of the clock in text form, unless the
    /// caller has a form of its own.
    CodeWriter &banner(const QString &title, const QString &projectName, const QString &toolVersion,
                       const QString &date = QString());
    CodeWriter &beginGuard(const QString &macro);
    CodeWriter &endGuard(const QString &macro);
    /// #include <file>
    CodeWriter &include(const QString &file);
    /// #include "file"
    CodeWriter &includeOwn(const QString &file);
    /// A comment of one line with its line feed; nothing in `text` can end it early.
    CodeWriter &comment(const QString &text);
    /// #ifndef name / #define name value / #endif
    CodeWriter &defineUnlessDefined(const QString &name, const QString &value);

    /// A C array, or any other brace list: `head` ends with the equals sign, rows get their commas
    /// as the next one comes, `note` stands as a comment behind the comma. A row's text carries
    /// its own indentation.
    CodeWriter &beginArray(const QString &head);
    CodeWriter &arrayRow(const QString &row, const QString &note = QString());
    CodeWriter &endArray();

    /// Text of a user that may stand in a block comment wherever the comment goes on: no comment
    /// mark, trigraph, line splice or invisible control survives in it.
    [[nodiscard]] static QString commentText(const QString &text);
    /// A C string literal with its quotes; bytes beyond printable ASCII as \x escapes.
    [[nodiscard]] static QString stringLiteral(const QByteArray &bytes);
    [[nodiscard]] static QString stringLiteral(const QString &text)
    {
        return stringLiteral(text.toUtf8());
    }
    /// Any text as a C identifier: other characters become underscores, a digit does not lead.
    [[nodiscard]] static QString identifier(const QString &text);
    /// "PROJECT by TOOL" texts: `format` with project name, application name and tool version.
    [[nodiscard]] static QString titleText(const QString &format, const QString &projectName,
                                           const QString &toolVersion);

private:
    CodeWriter &appendNumber(qlonglong number);
    void writeIfLarge();
    void writePendingRow(bool isLast);

    QIODevice *m_device;
    QByteArray m_buffer;
    QStringEncoder m_encoder;
    QString m_pendingRow;
    QString m_pendingNote;
    bool m_hasPendingRow = false;
};
