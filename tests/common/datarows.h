#pragma once
// A data-driven test's columns declared, and its row fetched, in one
// statement each rather than one QTest::addColumn / QFETCH per column:
//     columns<QString, int>({"name", "count"});                 // in foo_data()
//     auto [name, count] = fetch<QString, int>({"name", "count"}); // in foo()
// A name or type that does not match its column fails as QFETCH does.
#include <QtTest>
#include <array>
#include <tuple>
#include <utility>

template <typename... T> void columns(const std::array<const char *, sizeof...(T)> &names)
{
    std::size_t i = 0;
    (QTest::addColumn<T>(names[i++]), ...);
}

template <typename... T, std::size_t... I>
std::tuple<T...> fetchRow(const std::array<const char *, sizeof...(T)> &names, std::index_sequence<I...>)
{
    return std::tuple<T...>{ *static_cast<T *>(QTest::qData(names[I], qMetaTypeId<T>()))... };
}

template <typename... T> std::tuple<T...> fetch(const std::array<const char *, sizeof...(T)> &names)
{
    return fetchRow<T...>(names, std::index_sequence_for<T...>());
}
