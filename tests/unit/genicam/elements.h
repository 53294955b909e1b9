// Elements of descriptions as text, also many at once.
#pragma once

#include <string>

namespace koro::test
{

// `before`, the number, `after`, for the numbers from 0 on.
inline std::string Numbered(int count, const std::string& before, const std::string& after)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += before + std::to_string(i) + after;
    return text;
}

inline std::string Repeated(const std::string& text, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

inline std::string Integer(const std::string& name, const std::string& children = "<Value>1</Value>")
{
    return "<Integer Name=\"" + name + "\">" + children + "</Integer>";
}

// An integer formula as the node K, over a node A of value 6.
inline std::string Knife(const std::string& formula)
{
    return Integer("A", "<Value>6</Value>") + "<IntSwissKnife Name=\"K\"><pVariable Name=\"A\">A</pVariable><Formula>" +
           formula + "</Formula></IntSwissKnife>";
}

} // namespace koro::test
