// ThrowsExactly: matches a callable that throws exactly this class, not a derived one, with exactly this text.
//
//     EXPECT_THAT([&] { port.Read(0, 4); }, ThrowsExactly<IOException>("[Function: GCReadPort | ..."));
#pragma once

#include <exception>
#include <gmock/gmock.h>
#include <string>
#include <typeinfo>
#include <utility>

namespace koro::test
{

// "class: text" of the exception that the callable throws; empty if it throws nothing.
template <class Callable>
std::string WhatIsThrownBy(const Callable& callable)
{
    try
    {
        callable();
    }
    catch (const std::exception& exception)
    {
        return testing::internal::GetTypeName(typeid(exception)) + ": " + exception.what();
    }
    catch (...)
    {
        return "something that is no standard exception";
    }
    return "";
}

class ThrowsExactlyMatcher
{
public:
    using is_gtest_matcher = void;

    explicit ThrowsExactlyMatcher(std::string thrown) : expected(std::move(thrown)) {}

    template <class Callable>
    bool MatchAndExplain(const Callable& callable, testing::MatchResultListener* listener) const
    {
        const std::string thrown = WhatIsThrownBy(callable);
        if (thrown.empty())
        {
            *listener << "which throws nothing";
        }
        else
        {
            *listener << "which throws " << thrown;
        }
        return thrown == expected;
    }

    void DescribeTo(std::ostream* stream) const { *stream << "throws " << expected; }
    void DescribeNegationTo(std::ostream* stream) const { *stream << "does not throw " << expected; }

private:
    std::string expected;
};

template <class Exception>
ThrowsExactlyMatcher ThrowsExactly(const std::string& text)
{
    return ThrowsExactlyMatcher(testing::internal::GetTypeName(typeid(Exception)) + ": " + text);
}

} // namespace koro::test
