#pragma once

#include <QTest>

#include <initializer_list>
#include <tuple>
#include <utility>

/// The rows of a data-driven test function; the name of a row comes first.
template <class... Columns>
void addRows(std::initializer_list<std::tuple<const char *, Columns...>> rows)
{
    using Row = std::tuple<const char *, Columns...>;
    QTest::addColumn<Row>("row");
    for (const Row &row : rows)
        QTest::newRow(std::get<0>(row)) << row;
}

/// The row that runs, without its name.
template <class... Columns>
std::tuple<Columns...> row()
{
    using Row = std::tuple<const char *, Columns...>;
    const void *data = QTest::qData("row", qMetaTypeId<Row>());
    return std::apply([](const char *, const auto &...columns) { return std::tuple(columns...); },
                      *static_cast<const Row *>(data));
}

/// The words of a command line.
inline QStringList words(const QByteArray &line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// The columns and rows of a data-driven test function. The first value of a row is its name.
template <typename... Columns>
void testRows(std::initializer_list<const char *> columns,
              std::initializer_list<std::tuple<const char *, Columns...>> rows)
{
    const auto add = [&]<std::size_t... I>(std::index_sequence<I...>)
    {
        (QTest::addColumn<Columns>(columns.begin()[I]), ...);
        for (const auto &row : rows)
            (QTest::newRow(std::get<0>(row)) << ... << std::get<I + 1>(row));
    };
    add(std::index_sequence_for<Columns...>());
}
