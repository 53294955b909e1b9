// What the compile-time proofs of the interface share.
#pragma once

#include <type_traits>
#include <utility>

template <class A, class B>
constexpr bool is_same = std::is_same<A, B>::value;

// A base is left by a plain cast only where it is no virtual one.
template <class Base, class Derived, class = void>
struct CanCastDown : std::false_type
{};
template <class Base, class Derived>
struct CanCastDown<Base, Derived, std::void_t<decltype(static_cast<Derived*>(std::declval<Base*>()))>> : std::true_type
{};

// The class has an operation of that name and exactly that type; among overloads, this one.
#define HAS(type, name, result, arguments)                                                                             \
    static_assert(is_same<decltype(static_cast<result(type::*) arguments>(&type::name)), result(type::*) arguments>, "")
