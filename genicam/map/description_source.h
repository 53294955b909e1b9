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
    DescriptionSource() = default; // of nothing
    static DescriptionSource OfFile(EContentType_t type, const std::string& path);
    // Not copied: the bytes must live until the text was asked for.
    static DescriptionSource OfMemory(EContentType_t type, std::string_view bytes);
    static DescriptionSource OfText(std::string_view text); // copied

    bool IsEmpty() const { return !given; }
    bool IsReleased() const { return released; }
    // The XML text: read and unpacked by the first call, valid until Release. Throws RuntimeException, and
    // LogicalErrorException when there is nothing to read.
    std::string_view Text();
    void Release();

private:
    bool given = false;
    bool released = false;
    EContentType_t type = ContentType_Xml;
    std::string path;        // empty: not from a file
    std::string_view memory; // the caller's
    std::string text;        // what was copied, read or unpacked
    bool ready = false;      // the text is
};

} // namespace GENAPI_NAMESPACE::runtime
