// What the tests of feature bags share: elements of descriptions, and bags as texts without their first line.
#pragma once

#include "tests/unit/genicam/small_map.h"

#include <GenApi/Persistence.h>
#include <sstream>
#include <string>

namespace koro::test
{

const char* const firstLine = "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n";

// The records as lines, without the comments in front.
inline std::string Records(const GENAPI_NAMESPACE::CFeatureBag& bag)
{
    std::ostringstream stream;
    stream << bag;
    std::istringstream lines(stream.str());
    std::string line, records;
    while (std::getline(lines, line))
    {
        if (line[0] != '#') records += line + "\n";
    }
    return records;
}

inline void Fill(GENAPI_NAMESPACE::CFeatureBag& bag, const std::string& records)
{
    std::istringstream stream(firstLine + records);
    stream >> bag;
}

inline std::string Features(const std::string& names)
{
    std::istringstream words(names);
    std::string name, text = "<Category Name=\"Root\">";
    while (words >> name)
        text += "<pFeature>" + name + "</pFeature>";
    return text + "</Category>";
}

// A streamable integer with further children in front of its value.
inline std::string Kept(const std::string& name, const std::string& value, const std::string& more = "")
{
    return "<Integer Name=\"" + name + "\"><Streamable>Yes</Streamable>" + more + "<Value>" + value +
           "</Value></Integer>";
}

// A streamable register of one byte for each value of the selectors.
inline std::string KeptFor(
    const std::string& name, const std::string& address, const std::string& selectors, const std::string& more = "")
{
    std::istringstream words(selectors);
    std::string selector, indices;
    int offset = 1;
    for (; words >> selector; offset *= 16)
        indices += "<pIndex Offset=\"" + std::to_string(offset) + "\">" + selector + "</pIndex>";
    return "<IntReg Name=\"" + name + "\"><Streamable>Yes</Streamable>" + more + "<Address>" + address + "</Address>" +
           indices + "<Length>1</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign>" +
           "<Endianess>LittleEndian</Endianess></IntReg>";
}

inline std::string Selected(const std::string& names)
{
    std::istringstream words(names);
    std::string name, text;
    while (words >> name)
        text += "<pSelected>" + name + "</pSelected>";
    return text;
}

inline std::string IntegerSelector(
    const std::string& name, const std::string& value, const std::string& limits, const std::string& selected)
{
    return "<Integer Name=\"" + name + "\"><Value>" + value + "</Value>" + limits + Selected(selected) + "</Integer>";
}

// Entries A, B and C with the numbers 0, 1 and 2; `middle` goes into B.
inline std::string EnumerationSelector(
    const std::string& name, const std::string& value, const std::string& selected, const std::string& middle = "")
{
    return "<Enumeration Name=\"" + name + "\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry>" +
           "<EnumEntry Name=\"B\">" + middle + "<Value>1</Value></EnumEntry>" +
           "<EnumEntry Name=\"C\"><Value>2</Value></EnumEntry><Value>" + value + "</Value>" + Selected(selected) +
           "</Enumeration>";
}

const char* const yesAndNo =
    "<Integer Name=\"Yes\"><Value>1</Value></Integer><Integer Name=\"No\"><Value>0</Value></Integer>";

} // namespace koro::test
