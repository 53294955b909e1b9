#include "xml/parser.h"

#include "base/quoted.h"
#include "xml/description_builder.h"
#include "xml/links.h"
#include "xml/xml_reader.h"

#include <Base/GCException.h>
#include <algorithm>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const char* const nameSpaces[] = {
    "http://www.genicam.org/GenApi/Version_1_0", "http://www.genicam.org/GenApi/Version_1_1"};

bool IsBlank(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

std::string_view WithoutBlanks(std::string_view text)
{
    const size_t first = text.find_first_not_of(" \t\r\n");
    const size_t last = text.find_last_not_of(" \t\r\n");
    return first == std::string_view::npos ? std::string_view() : text.substr(first, last - first + 1);
}

// Registers are padded after the text.
std::string_view WithoutPadding(std::string_view xml)
{
    const std::string_view begin = xml.substr(0, 2);
    const bool wide =
        begin == "\xff\xfe" || begin == "\xfe\xff" || begin.find('\0') != std::string_view::npos; // UTF-16
    if (!wide) return xml.substr(0, xml.find_last_not_of(std::string_view("\0 \t\r\n", 5)) + 1);
    if (xml.size() % 2 == 1 && xml.back() == '\0') xml.remove_suffix(1);
    while (xml.size() >= 2 && xml.substr(xml.size() - 2) == std::string_view("\0\0", 2))
        xml.remove_suffix(2);
    return xml;
}

// The kinds of open elements in the parser.
enum class Open : uint8_t
{
    Root,
    Group,
    Node,
    Property
};

// In a configuration ROM their content is the key.
bool IsRomKey(Element element)
{
    return element == Element::TextDesc || element == Element::IntKey;
}

// Formulas among the address parts of these elements are distinguished by their names.
bool NamesItsKnives(Element element)
{
    return element == Element::IntReg || element == Element::MaskedIntReg || element == Element::FloatReg ||
           element == Element::Register;
}

class Parser final : public XmlHandler
{
public:
    explicit Parser(std::string_view xml) : reader(xml, *this), description(reader) {}

    std::shared_ptr<Description> Run()
    {
        reader.Run();
        return description.Result();
    }

private:
    void Start(std::string_view name, const XmlAttributes& attributes) override;
    void End() override;
    void Text(std::string_view part) override;
    std::string Where() const override;

    void StartRoot(std::string_view name, const XmlAttributes& attributes);
    void Skip(std::string_view name);
    void StartNode(Element element, const XmlAttributes& attributes);
    bool StartChild(std::string_view name, const XmlAttributes& attributes);
    void StartProperty(Property started, const XmlAttributes& attributes);
    void EndNode();
    void EndProperty();
    void EndConstant(NodeDraft& draft);
    void EndExpression(NodeDraft& draft);

    bool IsNodeHere(Element element) const;
    void CheckName(std::string_view name) const;
    const char* Required(const XmlAttributes& attributes, const char* name) const;
    void ReadNodeAttributes(NodeRecord& record, const XmlAttributes& attributes) const;
    GENICAM_NAMESPACE::RuntimeException Error(const std::string& what) const { return reader.Error(what); }

    NodeDraft& Current() { return drafts[draftCount - 1]; }
    NodeDraft& Push()
    {
        if (draftCount == drafts.size()) drafts.resize(draftCount + 1);
        return drafts[draftCount++];
    }

    XmlReader reader;
    DescriptionBuilder description;

    std::string prefix; // the text before each name: the namespace and a separator
    bool entriesMayStandAlone = false;
    std::vector<Open> open;
    unsigned skipped = 0;     // depth inside a skipped element
    bool inExtension = false; // whether it is an extension

    std::vector<NodeDraft> drafts; // reused; the first draftCount are in use
    size_t draftCount = 0;

    Property property = Property::None; // the open property
    std::string text;
    std::vector<PropertyRecord> attributeRecords; // of the open property

    // The entries of the open StructReg, until its end provides what they share.
    DescriptionBuilder::StructEntries structEntries;
};

std::string Parser::Where() const
{
    if (draftCount == 0 || drafts[draftCount - 1].node == noNode) return "";
    return " in node " + Quoted(description.NameOf(drafts[draftCount - 1].node));
}

void Parser::Start(std::string_view name, const XmlAttributes& attributes)
{
    if (skipped > 0)
    {
        if (++skipped > maxElementDepth) throw Error("elements are nested too deep");
        return;
    }
    if (open.size() >= maxElementDepth) throw Error("elements are nested too deep");
    if (open.empty()) return StartRoot(name, attributes);

    const bool known = name.substr(0, prefix.size()) == prefix &&
                       name.find(nameSpaceSeparator, prefix.size()) == std::string_view::npos;
    if (!known) throw Error("unexpected element encountered: " + Quoted(name));
    name.remove_prefix(prefix.size());

    if (open.back() == Open::Node)
    {
        if (!StartChild(name, attributes)) Skip(name);
    }
    else if (open.back() == Open::Property)
    {
        throw Error("unexpected element encountered: " + Quoted(name));
    }
    else if (name == "Group")
    {
        Required(attributes, "Comment");
        open.push_back(Open::Group);
    }
    else if (const Element element = FindElement(name); IsNodeHere(element))
    {
        StartNode(element, attributes);
    }
    else
    {
        Skip(name);
    }
}

void Parser::Skip(std::string_view name)
{
    skipped = 1;
    inExtension = name == "Extension";
}

// Entries are children of their enumeration; only the first schema allowed them elsewhere.
bool Parser::IsNodeHere(Element element) const
{
    if (element == Element::EnumEntry && !entriesMayStandAlone)
    {
        throw Error("Standalone <EnumEntry> node detected which is ignored in schema v1.0 but forbidden otherwise");
    }
    return element != Element::None && element != Element::StructEntry;
}

void Parser::StartRoot(std::string_view name, const XmlAttributes& attributes)
{
    const size_t separator = name.rfind(nameSpaceSeparator);
    prefix = std::string(name.substr(0, separator == std::string_view::npos ? 0 : separator + 1));
    name.remove_prefix(prefix.size());
    const std::string nameSpace = prefix.substr(0, prefix.size() - (prefix.empty() ? 0 : 1));
    const bool known = prefix.empty() || nameSpace == nameSpaces[0] || nameSpace == nameSpaces[1];
    if (name != "RegisterDescription" || !known) throw Error("unexpected element encountered: " + Quoted(name));
    entriesMayStandAlone = nameSpace == nameSpaces[0];

    const auto required = [&](const char* attribute) { return Required(attributes, attribute); };
    const auto number = [&](const char* attribute) {
        const int64_t result = description.Number(attribute, required(attribute));
        if (result < 0 || result > UINT16_MAX)
            throw Error(std::string("invalid value of attribute '") + attribute + "'");
        return static_cast<uint16_t>(result);
    };
    DeviceRecord& device = description.Device();
    device.modelName = required("ModelName");
    device.vendorName = required("VendorName");
    device.standardNameSpace = required("StandardNameSpace");
    device.productGuid = required("ProductGuid");
    device.versionGuid = required("VersionGuid");
    if (const char* const toolTip = attributes.Find("ToolTip")) device.toolTip = toolTip;
    device.schemaVersion.Major = number("SchemaMajorVersion");
    device.schemaVersion.Minor = number("SchemaMinorVersion");
    device.schemaVersion.SubMinor = number("SchemaSubMinorVersion");
    device.deviceVersion.Major = number("MajorVersion");
    device.deviceVersion.Minor = number("MinorVersion");
    device.deviceVersion.SubMinor = number("SubMinorVersion");
    const std::string_view standards[] = {"None", "IIDC", "GEV", "CL", "USB"};
    if (std::find(std::begin(standards), std::end(standards), device.standardNameSpace) == std::end(standards))
    {
        throw Error("value is not in enumeration: " + Quoted(device.standardNameSpace));
    }
    open.push_back(Open::Root);
}

void Parser::StartNode(Element element, const XmlAttributes& attributes)
{
    open.push_back(Open::Node);
    if (element == Element::StructReg)
    {
        Required(attributes, "Comment");
        Push().Start(element, noNode, {0, 0});
        structEntries.clear();
        return;
    }
    const char* const name = Required(attributes, "Name");
    CheckName(name);

    std::string nodeName(name);
    NodeIndex madeBy = noNode;
    if (draftCount > 0)
    {
        const NodeDraft& outer = Current();
        madeBy = outer.node;
        const auto compose = [&](const char* before) {
            nodeName = before + std::string(description.Text(outer.name)) + "_" + name;
        };
        if (element == Element::EnumEntry) compose("EnumEntry_");
        if (element == Element::IntSwissKnife && NamesItsKnives(outer.element)) compose("_");
    }
    const Element kind = element == Element::StructEntry ? Element::MaskedIntReg : element;
    const NodeIndex node = description.Define(nodeName, kind, madeBy);
    ReadNodeAttributes(description.Node(node), attributes);
    text.clear(); // the content of a key
    NodeDraft& draft = Push();
    draft.Start(element, node, description.Store(name));
    if (element == Element::EnumEntry) draft.properties.push_back(TextRecord(Property::EntryName, draft.name));
}

void Parser::ReadNodeAttributes(NodeRecord& record, const XmlAttributes& attributes) const
{
    if (const char* const nameSpace = attributes.Find("NameSpace"))
    {
        const std::string_view word(nameSpace);
        if (word != "Standard" && word != "Custom") throw Error("value is not in enumeration: " + Quoted(word));
        record.standard = word == "Standard";
    }
    if (const char* const priority = attributes.Find("MergePriority"))
    {
        const std::string_view word(priority);
        if (word != "-1" && word != "0" && word != "+1") throw Error("value is not in enumeration: " + Quoted(word));
        record.mergePriority = word == "-1" ? -1 : word == "+1";
    }
}

// Returns false when the open element does not allow this child.
bool Parser::StartChild(std::string_view name, const XmlAttributes& attributes)
{
    const Element outer = Current().element;
    const Element element = FindElement(name);
    const bool nested = (element == Element::EnumEntry && outer == Element::Enumeration) ||
                        (element == Element::StructEntry && outer == Element::StructReg) ||
                        (element == Element::IntSwissKnife && Takes(outer, Property::Address)) ||
                        (IsRomKey(element) && outer == Element::ConfRom);
    if (nested)
    {
        StartNode(element, attributes);
        return true;
    }
    const Property found = FindProperty(name);
    if (found == Property::None || !Takes(outer, found)) return false;
    StartProperty(found, attributes);
    return true;
}

void Parser::StartProperty(Property started, const XmlAttributes& attributes)
{
    const NodeDraft& draft = Current();
    if (!Repeats(draft.element, started) && draft.Has(started))
    {
        throw Error("unexpected element encountered: " + Quoted(NameOf(started)) + " stands twice");
    }
    property = started;
    text.clear();
    attributeRecords.clear();
    open.push_back(Open::Property);

    if (started == Property::pVariable || started == Property::Constant || started == Property::Expression)
    {
        const TextPlace name = description.Store(Required(attributes, "Name"));
        attributeRecords.push_back(TextRecord(Property::VariableName, name));
    }
    else if (started == Property::ValueIndexed || started == Property::pValueIndexed)
    {
        const int64_t index = description.Number("Index", Required(attributes, "Index"));
        attributeRecords.push_back(NumberRecord(Property::Index, index));
    }
    else if (started == Property::pIndex)
    {
        if (const char* const offset = attributes.Find("Offset"))
        {
            attributeRecords.push_back(NumberRecord(Property::Offset, description.Number("Offset", offset)));
        }
        else if (const char* const node = attributes.Find("pOffset"))
        {
            attributeRecords.push_back(LinkRecord(Property::pOffset, description.Mention(node)));
        }
    }
}

void Parser::Text(std::string_view part)
{
    if (skipped > 1 || (skipped == 1 && !inExtension)) return; // an extension contains only elements
    const bool key = !open.empty() && open.back() == Open::Node && IsRomKey(Current().element);
    if (skipped == 0 && !open.empty() && (open.back() == Open::Property || key))
    {
        if (part.size() > maxDescriptionSize - text.size()) throw Error("the text is too long");
        text.append(part);
    }
    else if (!IsBlank(part))
    {
        throw Error("unexpected characters encountered: " + Quoted(part));
    }
}

void Parser::End()
{
    if (skipped > 0)
    {
        --skipped;
        return;
    }
    const Open ended = open.back();
    open.pop_back();
    if (ended == Open::Property) EndProperty();
    if (ended == Open::Node) EndNode();
}

void Parser::EndProperty()
{
    NodeDraft& draft = Current();
    const bool unsaid = text.empty() && FormOf(draft.element, property) == Form::Word && WordOf(property, 0) == "No";
    if (unsaid) return; // an empty "yes or no" has no value
    switch (property)
    {
    case Property::Constant:
        EndConstant(draft);
        break;
    case Property::Expression:
        EndExpression(draft);
        break;
    default:
        draft.properties.push_back(description.Read(draft.element, property, text));
        break;
    }
    draft.properties.insert(draft.properties.end(), attributeRecords.begin(), attributeRecords.end());
}

// Creates a node with the number.
void Parser::EndConstant(NodeDraft& draft)
{
    const std::string name = description.MadeUpName(draft.node, description.Text(attributeRecords[0].text));
    const Element kind = IsFloatKind(draft.element) ? Element::Float : Element::Integer;
    const NodeIndex node = description.Define(name, kind, draft.node);
    PropertyRecord value = description.Read(draft.element, property, text);
    value.property = Property::Value;
    description.Finish(node, {value});
    draft.properties.push_back(LinkRecord(Property::pConstant, node));
}

// Creates a knife, which the end of the element completes.
void Parser::EndExpression(NodeDraft& draft)
{
    const std::string name = description.MadeUpName(draft.node, description.Text(attributeRecords[0].text));
    const Element kind = IsFloatKind(draft.element) ? Element::SwissKnife : Element::IntSwissKnife;
    const NodeIndex node = description.Define(name, kind, draft.node);
    draft.properties.push_back(LinkRecord(Property::pExpression, node));
    attributeRecords.push_back(TextRecord(Property::Expression, description.Store(text)));
}

const char* Parser::Required(const XmlAttributes& attributes, const char* name) const
{
    const char* const value = attributes.Find(name);
    if (!value) throw Error(std::string("expected attribute not encountered: '") + name + "'");
    return value;
}

void Parser::CheckName(std::string_view name) const
{
    const bool outsideAscii = std::any_of(name.begin(), name.end(), [](char letter) { return (letter & 0x80) != 0; });
    if (name.empty() || name[0] == '_' || outsideAscii) throw Error("Invalid node name " + Quoted(name));
}

void Parser::EndNode()
{
    NodeDraft& draft = Current();
    if (IsRomKey(draft.element) && draftCount > 1)
    {
        draft.properties.push_back(LinkRecord(Property::p1212Parser, drafts[draftCount - 2].node));
        draft.properties.push_back(NumberRecord(Property::Key, description.Number("Key", WithoutBlanks(text))));
    }
    if (const std::string fault = draft.Fault(); !fault.empty()) throw Error(fault);
    switch (draft.element)
    {
    case Element::StructReg:
        description.FinishStruct(draft, structEntries);
        break;
    case Element::StructEntry:
        structEntries.emplace_back(draft.node, draft.properties);
        break;
    case Element::IntSwissKnife:
    case Element::SwissKnife:
    case Element::IntConverter:
    case Element::Converter:
        description.FinishFormulas(draft);
        break;
    default:
        description.Finish(draft.node, draft.properties);
        break;
    }

    const Element element = draft.element;
    const PropertyRecord entry = LinkRecord(Property::pEntry, draft.node);
    const PropertyRecord address = LinkRecord(Property::pAddress, draft.node);
    --draftCount;
    if (draftCount == 0) return;
    if (element == Element::EnumEntry) Current().properties.push_back(entry);
    if (element == Element::IntSwissKnife) Current().properties.push_back(address);
}

} // namespace

std::shared_ptr<Description> ReadDescription(std::string_view xml)
{
    if (xml.size() > maxDescriptionSize)
    {
        throw RUNTIME_EXCEPTION("The description has %zu bytes; at most %zu are taken", xml.size(), maxDescriptionSize);
    }
    return Parser(WithoutPadding(xml)).Run();
}

} // namespace GENAPI_NAMESPACE::runtime
