#include "tools/koro/description_links.h"

#include <algorithm>
#include <expat.h>
#include <limits>
#include <memory>
#include <string_view>

namespace koro::tool
{

namespace
{

// A node is an element with a name, other than the entries of an enumeration, which decide nothing about it; its
// properties are the elements in it that hold text.
class Reader
{
public:
    explicit Reader(std::unordered_map<std::string, NodeLinks>& found) : nodes(found) {}

    void Read(const std::string& xml)
    {
        const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
            XML_ParserCreate(nullptr), XML_ParserFree);
        if (!parser || xml.size() > static_cast<size_t>(std::numeric_limits<int>::max())) return;
        XML_SetUserData(parser.get(), this);
        XML_SetElementHandler(parser.get(), OnStart, OnEnd);
        XML_SetCharacterDataHandler(parser.get(), OnText);
        XML_SetEntityDeclHandler(parser.get(), OnEntity);
        expat = parser.get();
        XML_Parse(parser.get(), xml.data(), static_cast<int>(xml.size()), XML_TRUE);
    }

private:
    struct Open
    {
        std::string element;
        std::string node; // empty for what is no node
    };

    static void XMLCALL OnStart(void* self, const XML_Char* element, const XML_Char** attributes)
    {
        static_cast<Reader*>(self)->Start(element, attributes);
    }
    static void XMLCALL OnEnd(void* self, const XML_Char*) { static_cast<Reader*>(self)->End(); }
    static void XMLCALL OnText(void* self, const XML_Char* piece, int size)
    {
        Reader& reader = *static_cast<Reader*>(self);
        if (reader.text.size() < maxText) reader.text.append(piece, static_cast<size_t>(size));
    }

    // The parser expands entities inside entities by recursion: more than so many end the reading.
    static void XMLCALL OnEntity(
        void* self, const XML_Char*, int, const XML_Char*, int, const XML_Char*, const XML_Char*, const XML_Char*,
        const XML_Char*)
    {
        Reader& reader = *static_cast<Reader*>(self);
        if (++reader.entities > maxEntities) XML_StopParser(reader.expat, XML_FALSE);
    }

    void Start(const std::string& element, const XML_Char** attributes)
    {
        text.clear();
        if (element == "StructReg") structMode.clear();
        std::string name;
        for (; *attributes; attributes += 2)
        {
            if (std::string_view(*attributes) == "Name") name = attributes[1];
        }
        // Groups, variables and constants have names too.
        const bool isNode = !name.empty() && element != "Group" && element != "EnumEntry" && element.front() != 'p' &&
                            element != "Constant" && element != "Expression";
        open.push_back({element, isNode ? name : std::string()});
        if (!isNode) return;
        NodeLinks& links = nodes[name];
        links.element = element;
        if (element == "StructEntry" && open.size() > 1) links.accessMode = structMode;
    }

    void End()
    {
        const std::string element = open.back().element;
        open.pop_back();
        if (open.empty()) return;
        const size_t first = text.find_first_not_of(" \t\r\n");
        const size_t last = text.find_last_not_of(" \t\r\n");
        const std::string value = first == text.npos ? std::string() : text.substr(first, last - first + 1);
        text.clear();
        if (value.empty()) return;
        if (open.back().element == "StructReg" && element == "AccessMode") structMode = value;
        if (open.back().node.empty()) return;
        NodeLinks& links = nodes[open.back().node];
        if (element == "AccessMode") links.accessMode = value;
        if (element == "ImposedAccessMode") links.imposedMode = value;
        if (element == "pIsImplemented") links.implementedBy.push_back(value);
        if (element == "pIsAvailable") links.availableBy.push_back(value);
        if (element == "pIsLocked") links.lockedBy.push_back(value);
        if (element == "pValue") links.values.push_back(value);
        if (element == "pVariable" || element == "pInvalidator") links.inputs.push_back(value);
    }

    static constexpr size_t maxText = 4096;
    static constexpr unsigned maxEntities = 1000;

    XML_Parser expat = nullptr;
    unsigned entities = 0;
    std::unordered_map<std::string, NodeLinks>& nodes;
    std::vector<Open> open;
    std::string text;
    std::string structMode;
};

} // namespace

DescriptionLinks::DescriptionLinks(const std::string& xml)
{
    Reader(nodes).Read(xml);
}

const NodeLinks* DescriptionLinks::Of(const std::string& name) const
{
    const auto found = nodes.find(name);
    return found == nodes.end() ? nullptr : &found->second;
}

std::vector<std::string> DescriptionLinks::ShownBy(const std::string& name) const
{
    std::vector<std::string> shown;
    for (const auto& [other, links] : nodes)
    {
        if (std::find(links.values.begin(), links.values.end(), name) != links.values.end()) shown.push_back(other);
    }
    std::sort(shown.begin(), shown.end());
    return shown;
}

} // namespace koro::tool
