#pragma once

#include <QTest>

#include <initializer_list>
#include <tuple>
#include <utility>

/// The columns and rows of a data-driven test function. The first value of a row is its name.
template <typename... Columns>
void testRows(std::initializer_list<const char *> columns,
              std::initializer_list<std::tuple<const char *, Columns...>> rows)
{
    const auto add = [&]<std::size_t... I>(std::index_sequence<I...>) {
        (QTest::addColumn<Columns>(columns.begin()[I]), ...);
        for (const auto &row : rows)
            (QTest::newRow(std::get<0>(row)) << ... << std::get<I + 1>(row));
    };
    add(std::index_sequence_for<Columns...>());
}
