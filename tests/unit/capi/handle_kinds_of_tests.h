// Two kinds of handles of the tests' own, so that tables are seen without a producer.
#pragma once

#include "base/instance.h"
#include "capi/handle_table.h"

#include <memory>

namespace koro::internal::test
{

class Parent : public Instance
{};

class Child : public Instance
{};

template <class Table>
int SizeOf(const Table& table)
{
    int size = 0;
    table.AnyOf([&](const auto&) {
        ++size;
        return false;
    });
    return size;
}

// Empty without an entry.
template <class Class>
std::shared_ptr<Class> ObjectOf(const HandleTable<Class>& table, HandleOf<Class> handle)
{
    const auto held = table.Find(handle);
    return held ? held->Get() : nullptr;
}

} // namespace koro::internal::test

namespace koro::internal
{

template <>
struct HandleOfClass<test::Child>
{
    using type = struct TestChild_st*;
};
template <>
struct HandleOfClass<test::Parent>
{
    using type = struct TestParent_st*;
};

} // namespace koro::internal
