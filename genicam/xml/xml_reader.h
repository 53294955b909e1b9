// XmlReader: an XML text as a sequence of events, based on expat, with positions for messages. It reads descriptions
// and control files of firmware updates, so the same bounds apply to both.
//
// Exists during one text. References to sources outside the text are refused; declarations in the text are bounded.
#pragma once

#include <Base/GCException.h>
#include <exception>
#include <stdint.h>
#include <string>
#include <string_view>

struct XML_ParserStruct;

namespace GENAPI_NAMESPACE::runtime
{

// Bounds against texts that expand while they are read.
const unsigned maxEntities = 1000;
const float maxAmplification = 10;

// The attributes of one element; valid only during the call for its start.
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

// Receives the events. Names of elements follow their namespace and a nameSpaceSeparator. An exception of a call ends
// the reading.
class XmlHandler
{
public:
    virtual void Start(std::string_view name, const XmlAttributes& attributes) = 0;
    virtual void End() = 0;
    virtual void Text(std::string_view part) = 0;
    // The current position in words, for messages: " in node 'Gain'", or empty.
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

    // Throws the exception of the handler, or an Error.
    void Run();
    // Called by the handler: no further event follows, and Run returns.
    void Stop();

    // The position of the current event.
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
