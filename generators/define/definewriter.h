#pragma once

#include "generators/base/codewriter.h"
#include "generators/base/stackdialect.h"

#include <QList>
#include <QSet>

/// Writes the lines of gen_define.h. Names are told in the words of the newer stack generation and
/// written in those of the dialect; a name that was written before is not defined again, so that
/// keys which lead to one macro can't make a header that does not compile.
class DefineWriter
{
public:
    DefineWriter(QIODevice &device, const StackDialect &dialect)
        : m_out(&device), m_dialect(dialect)
    {
    }

    /// #define NAME<tab>1u
    void flag(const QString &name) { number(name, 1); }
    void flagIf(bool condition, const QString &name);
    void number(const QString &name, quint64 value, char separator = '\t');
    /// Nothing for 0: the stack asks for such macros with #ifdef.
    void count(const QString &name, quint64 value, char separator = '\t');
    /// One number a line of the project.
    void list(const QString &name, const QList<quint32> &values);
    /// The text as it is, which must fit on one line.
    void text(const QString &name, const QString &value, char separator = '\t');

    /// Text that is no define.
    CodeWriter &out() { return m_out; }
    /// The name in the words of the dialect.
    [[nodiscard]] QString word(const QString &name) const;
    [[nodiscard]] const StackDialect &dialect() const { return m_dialect; }
    [[nodiscard]] bool isDefined(const QString &name) const { return m_names.contains(word(name)); }
    /// Definitions from here on stand in a branch of their own, where names may come again.
    void beginBranch() { m_names.clear(); }

private:
    CodeWriter m_out;
    const StackDialect &m_dialect;
    QSet<QString> m_names;
};
