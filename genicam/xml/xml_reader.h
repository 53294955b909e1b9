// XmlReader: an XML text as a row of events, over expat, with the places for messages. Descriptions and control files
// of firmware updates are read by it, so that one set of bounds holds for both.
//
// Lives for one text. What comes from outside the text is refused; what the text declares itself is bounded.
#pragma once

#include <Base/GCException.h>
#include <exception>
#include <stdint.h>
#include <string>
#include <string_view>

struct XML_ParserStruct;

namespace GENAPI_NAMESPACE::runtime
{

// Bounds against texts that grow while they are read.
const unsigned maxEntities = 1000;
const float maxAmplification = 10;

// The attributes of one element; valid while its start is told.
class XmlAttributes
{
public:
    explicit XmlAttributes(const char** pairs) : list(pairs) {}
    // Null when absent.
    const char* Find(std::string_view name) const;
    template <class Act>
    void ForEach(const Act& act) const
    {
        for (const char** pair = list; *pair; pair += 2)
            act(std::string_view(pair[0]), std::string_view(pair[1]));
    }

private:
    const char** list; // name, value, ..., null
};

// Who is told. Names of elements stand behind their name space and a nameSpaceSeparator. What a call throws ends the
// reading.
class XmlHandler
{
public:
    virtual void Start(std::string_view name, const XmlAttributes& attributes) = 0;
    virtual void End() = 0;
    virtual void Text(std::string_view part) = 0;
    // What is being read, for messages: " in node 'Gain'", or empty.
    virtual std::string Where() const = 0;

protected:
    ~XmlHandler() = default;
};

const char nameSpaceSeparator = '|';

class XmlReader
{
public:
    XmlReader(std::string_view xml, XmlHandler& handler);
    ~XmlReader();
    XmlReader(const XmlReader&) = delete;
    XmlReader& operator=(const XmlReader&) = delete;

    // Throws what the handler throws, or an Error.
    void Run();
    // No event follows, and Run returns. Called by the handler.
    void Stop();

    // Of the event that is being told.
    uint32_t Offset() const; // in bytes
    unsigned long Line() const;
    std::string Where() const { return handler.Where(); }
    // "Error while parsing XML stream at line 3 and column 5 : '<what>' in node 'Gain'"
    GENICAM_NAMESPACE::RuntimeException Error(const std::string& what) const;

private:
    static void OnStart(void* self, const char* name, const char** attributes);
    static void OnEnd(void* self, const char* name);
    static void OnText(void* self, const char* text, int length);
    static void OnEntity(
        void* self, const char* name, int isParameter, const char* value, int length, const char* base,
        const char* systemId, const char* publicId, const char* notation);
    static int OnExternalEntity(
        XML_ParserStruct* parser, const char* context, const char* base, const char* systemId, const char* publicId);
    template <class Act>
    void Guard(const Act& act) noexcept;

    std::string_view xml;
    XmlHandler& handler;
    XML_ParserStruct* expat;
    std::exception_ptr failure;
    bool stopped = false;
    unsigned entities = 0;
};

} // namespace GENAPI_NAMESPACE::runtime
