#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <algorithm>
#include <string>

/// One row of a statement's result; valid inside of the row callback only, on its thread. Columns
/// count from 0, and one that the row doesn't have is NULL.
class ResultRow
{
public:
    ResultRow() = default;
    virtual ~ResultRow() = default;
    ResultRow(const ResultRow &) = delete;
    ResultRow &operator=(const ResultRow &) = delete;

    [[nodiscard]] virtual QStringList columnNames() const = 0;
    /// For values of any type. NULL is a null text, and an invalid value behind the last column.
    [[nodiscard]] virtual QVariant value(int column) const = 0;

    // The rest spares a reader of many rows the detour over a variant.

    [[nodiscard]] virtual bool isNull(int column) const = 0;
    /// NULL is 0.
    [[nodiscard]] virtual qint64 integer(int column) const = 0;
    /// The text form of the value, in UTF-8; NULL is empty. Stays until the next value is asked
    /// for.
    [[nodiscard]] virtual QByteArrayView bytes(int column) const = 0;
    /// Has to be asked before the bytes are.
    [[nodiscard]] virtual bool isBlob(int column) const = 0;
    /// Adds the text form that the database gives to the value, in UTF-8 and up to its first NUL.
    virtual void appendText(std::string &text, int column) const = 0;

    /// Whatever the case of its letters; -1 if there is none.
    [[nodiscard]] int columnOf(const QString &name) const
    {
        const QStringList names = columnNames();
        const auto found = std::find_if(names.begin(), names.end(), [&](const QString &candidate) {
            return candidate.compare(name, Qt::CaseInsensitive) == 0;
        });
        return found == names.end() ? -1 : int(found - names.begin());
    }
    [[nodiscard]] QString text(int column) const { return textOf(bytes(column)); }

    /// A byte order mark at the front is a character of the text, and no mark.
    [[nodiscard]] static QString textOf(QByteArrayView utf8)
    {
        constexpr QByteArrayView mark("\xEF\xBB\xBF");
        if (!utf8.startsWith(mark))
            return QString::fromUtf8(utf8);
        return QChar(QChar::ByteOrderMark) + QString::fromUtf8(utf8.sliced(mark.size()));
    }
};
