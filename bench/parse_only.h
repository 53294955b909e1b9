// ParseOnly: the time that the parser takes for a description, without anything that is made of it.
#pragma once

#include <expat.h>
#include <stdexcept>
#include <string>

namespace koro::bench
{

inline void ParseOnly(const std::string& xml)
{
    const XML_Parser parser = XML_ParserCreateNS(nullptr, '|');
    const XML_Status status = XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), XML_TRUE);
    XML_ParserFree(parser);
    if (status != XML_STATUS_OK) throw std::runtime_error("the description is no XML");
}

} // namespace koro::bench
