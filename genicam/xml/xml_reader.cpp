#include "xml/xml_reader.h"

// Declares the limits for the expansion of entities, which exist only with this macro.
#define XML_DTD
#include <expat.h>

namespace GENAPI_NAMESPACE::runtime
{

const char* XmlAttributes::Find(std::string_view name) const
{
    for (const char** pair = list; *pair; pair += 2)
    {
        if (name == *pair) return pair[1];
    }
    return nullptr;
}

XmlReader::XmlReader(std::string_view xml, XmlHandler& handler)
    : xml(xml), handler(handler), expat(XML_ParserCreateNS(nullptr, nameSpaceSeparator))
{
    if (!expat) throw BAD_ALLOC_EXCEPTION("Error while creating the XML parser");
    XML_SetUserData(expat, this);
    XML_SetElementHandler(expat, OnStart, OnEnd);
    XML_SetCharacterDataHandler(expat, OnText);
    XML_SetEntityDeclHandler(expat, OnEntity);
    XML_SetExternalEntityRefHandler(expat, OnExternalEntity);
    XML_SetBillionLaughsAttackProtectionMaximumAmplification(expat, maxAmplification);
}

XmlReader::~XmlReader()
{
    XML_ParserFree(expat);
}

void XmlReader::Run()
{
    const XML_Status status = XML_Parse(expat, xml.data(), static_cast<int>(xml.size()), XML_TRUE);
    if (failure) std::rethrow_exception(failure);
    if (status != XML_STATUS_OK && !stopped) throw Error(XML_ErrorString(XML_GetErrorCode(expat)));
}

void XmlReader::Stop()
{
    stopped = true;
    XML_StopParser(expat, XML_FALSE);
}

uint32_t XmlReader::Offset() const
{
    return static_cast<uint32_t>(XML_GetCurrentByteIndex(expat));
}

unsigned long XmlReader::Line() const
{
    return XML_GetCurrentLineNumber(expat);
}

GENICAM_NAMESPACE::RuntimeException XmlReader::Error(const std::string& what) const
{
    return RUNTIME_EXCEPTION(
        "Error while parsing XML stream at line %lu and column %lu : '%.1000s'%s", Line(),
        XML_GetCurrentColumnNumber(expat) + 1, what.c_str(), handler.Where().c_str());
}

// No exception may pass through expat: it is stored, and the parsing is stopped.
template <class Act>
void XmlReader::Guard(const Act& act) noexcept
{
    if (failure || stopped) return;
    try
    {
        act();
    }
    catch (...)
    {
        failure = std::current_exception();
        XML_StopParser(expat, XML_FALSE);
    }
}

void XmlReader::OnStart(void* self, const char* name, const char** attributes)
{
    XmlReader& reader = *static_cast<XmlReader*>(self);
    reader.Guard([&] { reader.handler.Start(name, XmlAttributes(attributes)); });
}

void XmlReader::OnEnd(void* self, const char*)
{
    XmlReader& reader = *static_cast<XmlReader*>(self);
    reader.Guard([&] { reader.handler.End(); });
}

void XmlReader::OnText(void* self, const char* text, int length)
{
    XmlReader& reader = *static_cast<XmlReader*>(self);
    reader.Guard([&] { reader.handler.Text({text, static_cast<size_t>(length)}); });
}

// expat expands entities inside entities by recursion, so their number bounds its stack.
void XmlReader::OnEntity(
    void* self, const char*, int, const char*, int, const char*, const char*, const char*, const char*)
{
    XmlReader& reader = *static_cast<XmlReader*>(self);
    reader.Guard([&] {
        if (++reader.entities > maxEntities) throw reader.Error("too many entities are declared");
    });
}

// A text must not refer to other sources.
int XmlReader::OnExternalEntity(XML_ParserStruct*, const char*, const char*, const char*, const char*)
{
    return XML_STATUS_ERROR;
}

} // namespace GENAPI_NAMESPACE::runtime
