// DescriptionSource: the source of the text of a camera description, until it is parsed.
#pragma once

#include <GenApi/NodeMapFactory.h>
#include <string>
#include <string_view>

namespace GENAPI_NAMESPACE::runtime
{

class DescriptionSource
{
public:
    DescriptionSource() = default; // an empty source
    static DescriptionSource OfFile(EContentType_t type, const std::string& path);
    // Not copied: the bytes must stay valid until the text was requested.
    static DescriptionSource OfMemory(EContentType_t type, std::string_view bytes);
    static DescriptionSource OfText(std::string_view text); // copied

    bool IsEmpty() const { return !given; }
    bool IsReleased() const { return released; }
    // The XML text: the first call reads and unpacks it; valid until Release. Throws RuntimeException, or
    // LogicalErrorException when there is nothing to read.
    std::string_view Text();
    void Release();

private:
    bool given = false;
    bool released = false;
    EContentType_t type = ContentType_Xml;
    std::string path;        // empty: not from a file
    std::string_view memory; // owned by the caller
    std::string text;        // the copied, read or unpacked text
    bool ready = false;      // the text is available
};

} // namespace GENAPI_NAMESPACE::runtime
