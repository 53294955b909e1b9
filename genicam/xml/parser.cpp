#include "xml/parser.h"

#include "xml/links.h"
#include "xml/numbers.h"

#include <Base/GCException.h>
#include <algorithm>
#include <exception>
#include <expat.h>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const char nameSpaceSeparator = '|';
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

std::string Quoted(std::string_view text)
{
    return "'" + std::string(text.substr(0, 200)) + "'";
}

// Registers are padded behind the text.
std::string_view WithoutPadding(std::string_view xml)
{
    const std::string_view begin = xml.substr(0, 2);
    const bool wide =
        begin == "\xff\xfe" || begin == "\xfe\xff" || begin.find('\0') != std::string_view::npos; // UTF-16
    if (!wide) return xml.substr(0, xml.find_last_not_of(std::string_view("\0 \t\r\n", 5)) + 1);
    while (xml.size() >= 2 && xml.substr(xml.size() - 2) == std::string_view("\0\0", 2))
        xml.remove_suffix(2);
    return xml;
}

// One node that is being read.
struct Builder
{
    Element element = Element::None;
    NodeIndex node = noNode; // none for a StructReg
    TextPlace name = {0, 0}; // as the file has it
    std::vector<PropertyRecord> properties;

    void Start(Element startedElement, NodeIndex startedNode, TextPlace startedName)
    {
        element = startedElement;
        node = startedNode;
        name = startedName;
        properties.clear();
    }
    bool Has(Property property) const
    {
        return std::any_of(properties.begin(), properties.end(), [property](const PropertyRecord& record) {
            return record.property == property;
        });
    }
};

// What an open element is to the parser.
enum class Open : uint8_t
{
    Root,
    Group,
    Node,
    Property
};

class Parser
{
public:
    explicit Parser(std::string_view source)
        : xml(source), expat(XML_ParserCreateNS(nullptr, nameSpaceSeparator)),
          description(std::make_shared<Description>())
    {
        if (!expat) throw BAD_ALLOC_EXCEPTION("Error while creating the XML parser");
        XML_SetUserData(expat, this);
        XML_SetElementHandler(expat, OnStart, OnEnd);
        XML_SetCharacterDataHandler(expat, OnText);
        XML_SetExternalEntityRefHandler(expat, OnExternalEntity);
    }
    ~Parser() { XML_ParserFree(expat); }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    std::shared_ptr<const Description> Run()
    {
        const XML_Status status = XML_Parse(expat, xml.data(), static_cast<int>(xml.size()), XML_TRUE);
        if (failure) std::rethrow_exception(failure);
        if (status != XML_STATUS_OK) throw Error(XML_ErrorString(XML_GetErrorCode(expat)));
        ResolveLinks(*description, xml);
        return description;
    }

private:
    static void OnStart(void* self, const XML_Char* name, const XML_Char** attributes)
    {
        static_cast<Parser*>(self)->Guard([&](Parser& parser) { parser.Start(name, attributes); });
    }
    static void OnEnd(void* self, const XML_Char*)
    {
        static_cast<Parser*>(self)->Guard([](Parser& parser) { parser.End(); });
    }
    static void OnText(void* self, const XML_Char* text, int length)
    {
        static_cast<Parser*>(self)->Guard([&](Parser& parser) { parser.Text({text, static_cast<size_t>(length)}); });
    }
    static int OnExternalEntity(XML_Parser, const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*)
    {
        return XML_STATUS_ERROR; // a description never reaches beyond itself
    }

    // No exception may travel through expat: it is kept, and the parsing stopped.
    template <class Act>
    void Guard(const Act& act) noexcept
    {
        if (failure) return;
        try
        {
            act(*this);
        }
        catch (...)
        {
            failure = std::current_exception();
            XML_StopParser(expat, XML_FALSE);
        }
    }

    GENICAM_NAMESPACE::RuntimeException Error(const std::string& what) const
    {
        return RUNTIME_EXCEPTION(
            "Error while parsing XML stream at line %lu and column %lu : '%.1000s'", XML_GetCurrentLineNumber(expat),
            XML_GetCurrentColumnNumber(expat) + 1, what.c_str());
    }

    void Start(std::string_view name, const XML_Char** attributes);
    void StartRoot(std::string_view name, const XML_Char** attributes);
    void StartNode(Element element, const XML_Char** attributes);
    bool StartChild(std::string_view name, const XML_Char** attributes);
    void StartProperty(Property started, const XML_Char** attributes);
    void End();
    void EndNode();
    void EndProperty();
    void Text(std::string_view part);

    bool IsNodeHere(Element element) const;
    TextPlace Store(std::string_view stored);
    NodeIndex Mention(std::string_view name);
    NodeIndex Define(std::string_view name, Element element, bool standard);
    void CheckName(std::string_view name) const;
    void CheckChoices(const Builder& builder) const;
    PropertyRecord Record(Property named, int64_t number) const;
    PropertyRecord Link(Property link, NodeIndex node) const;
    PropertyRecord TextRecord(Property named, TextPlace place) const;
    PropertyRecord Read(Element element, Property read, std::string_view value);
    int64_t Number(std::string_view name, std::string_view value) const;
    void Finish(NodeIndex node, const std::vector<PropertyRecord>& finished);
    void FinishStruct(Builder& builder);
    void FinishFormulas(Builder& builder);
    NodeIndex AddMadeUp(const std::string& name, Element element);
    std::string MadeUpName(const Builder& builder, std::string_view suffix) const;

    Builder& Current() { return builders[builderCount - 1]; }
    Builder& Push()
    {
        if (builderCount == builders.size()) builders.resize(builderCount + 1);
        return builders[builderCount++];
    }

    std::string_view xml;
    XML_Parser expat;
    std::shared_ptr<Description> description;
    std::exception_ptr failure;

    std::string prefix; // what expat puts before a name: the name space and a separator
    bool entriesMayStandAlone = false;
    std::vector<Open> open;
    unsigned skipped = 0; // depth inside an element that is left out

    std::vector<Builder> builders; // reused; the first builderCount are at work
    size_t builderCount = 0;

    Property property = Property::None; // the open one
    std::string text;
    std::vector<PropertyRecord> attributeRecords; // of the open property

    // The entries of the open StructReg, until its end tells what they share.
    std::vector<std::pair<NodeIndex, std::vector<PropertyRecord>>> structEntries;
};

// In a configuration ROM their content is the key.
bool IsRomKey(Element element)
{
    return element == Element::TextDesc || element == Element::IntKey;
}

// A knife among the address parts of these is told apart by their name.
bool NamesItsKnives(Element element)
{
    return element == Element::IntReg || element == Element::MaskedIntReg || element == Element::FloatReg ||
           element == Element::Register;
}

const XML_Char* Attribute(const XML_Char** attributes, std::string_view name)
{
    for (; *attributes; attributes += 2)
    {
        if (name == *attributes) return attributes[1];
    }
    return nullptr;
}

void Parser::Start(std::string_view name, const XML_Char** attributes)
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
        if (!StartChild(name, attributes)) skipped = 1;
    }
    else if (open.back() == Open::Property)
    {
        throw Error("unexpected element encountered: " + Quoted(name));
    }
    else if (name == "Group")
    {
        if (!Attribute(attributes, "Comment")) throw Error("expected attribute not encountered: 'Comment'");
        open.push_back(Open::Group);
    }
    else if (const Element element = FindElement(name); IsNodeHere(element))
    {
        StartNode(element, attributes);
    }
    else
    {
        skipped = 1;
    }
}

// Entries stand inside their enumeration; only the first schema knew them elsewhere.
bool Parser::IsNodeHere(Element element) const
{
    if (element == Element::EnumEntry && !entriesMayStandAlone)
    {
        throw Error("Standalone <EnumEntry> node detected which is ignored in schema v1.0 but forbidden otherwise");
    }
    return element != Element::None && element != Element::StructEntry;
}

void Parser::StartRoot(std::string_view name, const XML_Char** attributes)
{
    const size_t separator = name.rfind(nameSpaceSeparator);
    prefix = std::string(name.substr(0, separator == std::string_view::npos ? 0 : separator + 1));
    name.remove_prefix(prefix.size());
    const std::string nameSpace = prefix.substr(0, prefix.size() - (prefix.empty() ? 0 : 1));
    const bool known = prefix.empty() || nameSpace == nameSpaces[0] || nameSpace == nameSpaces[1];
    if (name != "RegisterDescription" || !known) throw Error("unexpected element encountered: " + Quoted(name));
    entriesMayStandAlone = nameSpace == nameSpaces[0];

    const auto required = [&](const char* attribute) -> std::string_view {
        const XML_Char* const value = Attribute(attributes, attribute);
        if (!value) throw Error(std::string("expected attribute not encountered: '") + attribute + "'");
        return value;
    };
    const auto number = [&](const char* attribute) {
        const std::string_view value = required(attribute);
        const int64_t result = Number(attribute, value);
        if (result < 0 || result > UINT16_MAX)
            throw Error(std::string("invalid value of attribute '") + attribute + "'");
        return static_cast<uint16_t>(result);
    };
    DeviceRecord& device = description->device;
    device.modelName = required("ModelName");
    device.vendorName = required("VendorName");
    device.standardNameSpace = required("StandardNameSpace");
    device.productGuid = required("ProductGuid");
    device.versionGuid = required("VersionGuid");
    if (const XML_Char* const toolTip = Attribute(attributes, "ToolTip")) device.toolTip = toolTip;
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

void Parser::StartNode(Element element, const XML_Char** attributes)
{
    open.push_back(Open::Node);
    if (element == Element::StructReg)
    {
        if (!Attribute(attributes, "Comment")) throw Error("expected attribute not encountered: 'Comment'");
        Push().Start(element, noNode, {0, 0});
        structEntries.clear();
        return;
    }
    const XML_Char* const name = Attribute(attributes, "Name");
    if (!name) throw Error("expected attribute not encountered: 'Name'");
    bool standard = false;
    if (const XML_Char* const nameSpace = Attribute(attributes, "NameSpace"))
    {
        const std::string_view word(nameSpace);
        if (word != "Standard" && word != "Custom") throw Error("value is not in enumeration: " + Quoted(word));
        standard = word == "Standard";
    }
    CheckName(name);

    std::string nodeName(name);
    if (builderCount > 0)
    {
        const Builder& outer = Current();
        const std::string outerName(description->Text(outer.name));
        if (element == Element::EnumEntry) nodeName = "EnumEntry_" + outerName + "_" + name;
        if (element == Element::IntSwissKnife && NamesItsKnives(outer.element)) nodeName = "_" + outerName + "_" + name;
    }
    const NodeIndex node =
        Define(nodeName, element == Element::StructEntry ? Element::MaskedIntReg : element, standard);
    text.clear(); // the content of a key
    Builder& builder = Push();
    builder.Start(element, node, Store(name));
    if (element == Element::EnumEntry) builder.properties.push_back(TextRecord(Property::EntryName, builder.name));
}

// False: nothing that the open element knows.
bool Parser::StartChild(std::string_view name, const XML_Char** attributes)
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

void Parser::StartProperty(Property started, const XML_Char** attributes)
{
    const Builder& builder = Current();
    if (!Repeats(builder.element, started) && builder.Has(started))
    {
        throw Error("unexpected element encountered: " + Quoted(NameOf(started)) + " stands twice");
    }
    property = started;
    text.clear();
    attributeRecords.clear();
    open.push_back(Open::Property);

    if (started == Property::pVariable || started == Property::Constant || started == Property::Expression)
    {
        const XML_Char* const name = Attribute(attributes, "Name");
        if (!name) throw Error("expected attribute not encountered: 'Name'");
        attributeRecords.push_back(TextRecord(Property::VariableName, Store(name)));
    }
    else if (started == Property::ValueIndexed || started == Property::pValueIndexed)
    {
        const XML_Char* const index = Attribute(attributes, "Index");
        if (!index) throw Error("expected attribute not encountered: 'Index'");
        attributeRecords.push_back(Record(Property::Index, Number("Index", index)));
    }
    else if (started == Property::pIndex)
    {
        if (const XML_Char* const offset = Attribute(attributes, "Offset"))
        {
            attributeRecords.push_back(Record(Property::Offset, Number("Offset", offset)));
        }
        else if (const XML_Char* const node = Attribute(attributes, "pOffset"))
        {
            attributeRecords.push_back(Link(Property::pOffset, Mention(node)));
        }
    }
}

void Parser::Text(std::string_view part)
{
    if (skipped > 0) return;
    const bool key = !open.empty() && open.back() == Open::Node && IsRomKey(Current().element);
    if (!open.empty() && (open.back() == Open::Property || key))
    {
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
    Builder& builder = Current();
    const bool unsaid = text.empty() && FormOf(builder.element, property) == Form::Word && WordOf(property, 0) == "No";
    if (unsaid) return; // an empty "yes or no" is none
    if (property == Property::Constant)
    {
        const std::string name = MadeUpName(builder, description->Text(attributeRecords[0].text));
        const bool real = IsFloatKind(builder.element);
        const NodeIndex node = AddMadeUp(name, real ? Element::Float : Element::Integer);
        PropertyRecord value = Read(builder.element, property, text);
        value.property = Property::Value;
        Finish(node, {value});
        builder.properties.push_back(Link(Property::pConstant, node));
    }
    else if (property == Property::Expression)
    {
        const std::string name = MadeUpName(builder, description->Text(attributeRecords[0].text));
        const bool real = IsFloatKind(builder.element);
        const NodeIndex node = AddMadeUp(name, real ? Element::SwissKnife : Element::IntSwissKnife);
        builder.properties.push_back(Link(Property::pExpression, node));
        attributeRecords.push_back(TextRecord(Property::Expression, Store(text)));
    }
    else
    {
        builder.properties.push_back(Read(builder.element, property, text));
    }
    builder.properties.insert(builder.properties.end(), attributeRecords.begin(), attributeRecords.end());
}

PropertyRecord Parser::Read(Element element, Property read, std::string_view value)
{
    PropertyRecord record = Record(read, 0);
    switch (FormOf(element, read))
    {
    case Form::Link:
        record.node = Mention(value);
        break;
    case Form::FilledText:
        if (value.empty()) throw Error("length is less than minimum allowed");
        record.text = Store(value);
        break;
    case Form::Text:
        record.text = Store(value);
        break;
    case Form::Number:
        record.number = Number(NameOf(read), value);
        break;
    case Form::Real:
        if (!ParseReal(value, record.real)) throw Error("invalid double value: " + Quoted(value));
        break;
    case Form::Boolean:
        record.number = value == "true" || value == "1";
        if (!record.number && value != "false" && value != "0") throw Error("invalid boolean value: " + Quoted(value));
        break;
    case Form::Word:
        record.number = WordNumber(element, read, value);
        if (record.number < 0) throw Error("value is not in enumeration: " + Quoted(value));
        break;
    }
    return record;
}

int64_t Parser::Number(std::string_view name, std::string_view value) const
{
    int64_t number = 0;
    if (!ParseNumber(value, number))
    {
        throw PROPERTY_EXCEPTION(
            "Error in property of type '%.*s' at line %lu: cannot convert %s to int64_t", static_cast<int>(name.size()),
            name.data(), XML_GetCurrentLineNumber(expat), Quoted(value).c_str());
    }
    return number;
}

PropertyRecord Parser::Record(Property named, int64_t number) const
{
    PropertyRecord record;
    record.property = named;
    record.number = number;
    return record;
}

PropertyRecord Parser::Link(Property link, NodeIndex node) const
{
    PropertyRecord record = Record(link, 0);
    record.node = node;
    return record;
}

PropertyRecord Parser::TextRecord(Property named, TextPlace place) const
{
    PropertyRecord record = Record(named, 0);
    record.text = place;
    return record;
}

TextPlace Parser::Store(std::string_view stored)
{
    const TextPlace place = {static_cast<uint32_t>(description->texts.size()), static_cast<uint32_t>(stored.size())};
    description->texts.append(stored);
    return place;
}

NodeIndex Parser::Mention(std::string_view name)
{
    const NodeIndex known = description->FindNode(name);
    if (known != noNode) return known;
    if (description->nodes.size() >= maxNodes) throw Error("more nodes than this runtime takes");
    const NodeIndex node = static_cast<NodeIndex>(description->nodes.size());
    NodeRecord record = {};
    record.name = Store(name);
    record.sourceOffset = static_cast<uint32_t>(XML_GetCurrentByteIndex(expat));
    description->nodes.push_back(record);
    description->names.Add(name, node);
    return node;
}

NodeIndex Parser::Define(std::string_view name, Element element, bool standard)
{
    const NodeIndex node = Mention(name);
    NodeRecord& record = description->nodes[node];
    if (record.element != Element::None) throw Error("Found a duplicate node " + Quoted(name));
    record.element = element;
    record.standard = standard;
    record.sourceOffset = static_cast<uint32_t>(XML_GetCurrentByteIndex(expat));
    return node;
}

void Parser::CheckName(std::string_view name) const
{
    const bool outsideAscii = std::any_of(name.begin(), name.end(), [](char letter) { return (letter & 0x80) != 0; });
    if (name.empty() || name[0] == '_' || outsideAscii) throw Error("Invalid node name " + Quoted(name));
}

void Parser::EndNode()
{
    Builder& builder = Current();
    if (IsRomKey(builder.element) && builderCount > 1)
    {
        builder.properties.push_back(Link(Property::p1212Parser, builders[builderCount - 2].node));
        builder.properties.push_back(Record(Property::Key, Number("Key", WithoutBlanks(text))));
    }
    CheckChoices(builder);
    switch (builder.element)
    {
    case Element::StructReg:
        FinishStruct(builder);
        break;
    case Element::StructEntry:
        structEntries.emplace_back(builder.node, builder.properties);
        break;
    case Element::IntSwissKnife:
    case Element::SwissKnife:
    case Element::IntConverter:
    case Element::Converter:
        FinishFormulas(builder);
        break;
    default:
        Finish(builder.node, builder.properties);
        break;
    }

    const Element element = builder.element;
    const PropertyRecord entry = Link(Property::pEntry, builder.node);
    const PropertyRecord address = Link(Property::pAddress, builder.node);
    --builderCount;
    if (builderCount == 0) return;
    if (element == Element::EnumEntry) Current().properties.push_back(entry);
    if (element == Element::IntSwissKnife) Current().properties.push_back(address);
}

void Parser::CheckChoices(const Builder& builder) const
{
    for (const Choice& choice : ChoicesOf(builder.element))
    {
        int found = 0;
        for (const Property candidate : choice.properties)
            found += candidate != Property::None && builder.Has(candidate);
        if (found > 1)
            throw Error(std::string("unexpected element encountered beside '") + NameOf(choice.properties[0]) + "'");
        if (found == 0 && choice.required)
        {
            throw Error(std::string("expected element not encountered: '") + NameOf(choice.properties[0]) + "'");
        }
    }
    const auto missing = [&](const char* what) {
        return Error(std::string("expected element not encountered: '") + what + "'");
    };
    const bool hasAddress =
        builder.Has(Property::Address) || builder.Has(Property::pAddress) || builder.Has(Property::pIndex);
    if (Takes(builder.element, Property::Address) && !hasAddress) throw missing("Address");
    if (builder.element == Element::Enumeration && !builder.Has(Property::pEntry)) throw missing("EnumEntry");

    const bool masked = builder.element == Element::MaskedIntReg || builder.element == Element::StructEntry;
    if (masked && builder.Has(Property::LSB) != builder.Has(Property::MSB)) throw missing("MSB");
    const bool indexed = Takes(builder.element, Property::ValueIndexed) && builder.Has(Property::pIndex);
    if (!indexed) return;
    if (!builder.Has(Property::ValueIndexed) && !builder.Has(Property::pValueIndexed)) throw missing("ValueIndexed");
    if (!builder.Has(Property::ValueDefault) && !builder.Has(Property::pValueDefault)) throw missing("ValueDefault");
}

void Parser::Finish(NodeIndex node, const std::vector<PropertyRecord>& finished)
{
    NodeRecord& record = description->nodes[node];
    record.firstProperty = static_cast<uint32_t>(description->properties.size());
    record.propertyCount = static_cast<uint32_t>(finished.size());
    description->properties.insert(description->properties.end(), finished.begin(), finished.end());
}

// Each entry takes over what it does not say itself; address parts, length, port and byte order always.
void Parser::FinishStruct(Builder& builder)
{
    for (auto& [node, own] : structEntries)
    {
        const auto has = [&own = own](Property wanted) {
            return std::any_of(
                own.begin(), own.end(), [wanted](const PropertyRecord& record) { return record.property == wanted; });
        };
        std::vector<PropertyRecord> merged;
        merged.reserve(builder.properties.size() + own.size());
        for (const PropertyRecord& shared : builder.properties)
        {
            if (!Takes(Element::StructEntry, shared.property) || !has(shared.property)) merged.push_back(shared);
        }
        merged.insert(merged.end(), own.begin(), own.end());
        Finish(node, merged);
    }
}

std::string Parser::MadeUpName(const Builder& builder, std::string_view suffix) const
{
    return "_" + std::string(description->NameOf(builder.node)) + "_" + std::string(suffix);
}

NodeIndex Parser::AddMadeUp(const std::string& name, Element element)
{
    return Define(name, element, false);
}

// The expressions, the knife itself or the two formulas of a converter: each sees the variables, the constants and the
// expressions before it.
void Parser::FinishFormulas(Builder& builder)
{
    std::vector<PropertyRecord> rest;
    std::vector<PropertyRecord> shared; // variables and constants
    std::vector<PropertyRecord> expressions;
    const std::vector<PropertyRecord>& all = builder.properties;
    for (size_t i = 0; i < all.size(); ++i)
    {
        switch (all[i].property)
        {
        case Property::pVariable:
        case Property::pConstant:
            shared.insert(shared.end(), {all[i], all[i + 1]}), ++i;
            break;
        case Property::pExpression:
            expressions.insert(expressions.end(), {all[i], all[i + 1], all[i + 2]}), i += 2;
            break;
        default:
            rest.push_back(all[i]);
            break;
        }
    }
    const auto finish = [&](NodeIndex node, size_t expressionCount, const std::vector<PropertyRecord>& own) {
        std::vector<PropertyRecord> records = own;
        records.insert(records.end(), shared.begin(), shared.end());
        for (size_t i = 0; i < expressionCount; ++i)
        {
            records.insert(records.end(), {expressions[3 * i], expressions[3 * i + 1]});
        }
        Finish(node, records);
    };
    const size_t count = expressions.size() / 3;
    for (size_t i = 0; i < count; ++i)
    {
        finish(expressions[3 * i].node, i, {TextRecord(Property::Formula, expressions[3 * i + 2].text)});
    }
    if (builder.element == Element::IntSwissKnife || builder.element == Element::SwissKnife)
    {
        finish(builder.node, count, rest);
        return;
    }
    const std::string name(description->NameOf(builder.node));
    const Element knife = builder.element == Element::Converter ? Element::SwissKnife : Element::IntSwissKnife;
    const NodeIndex to = AddMadeUp(name + "_ConvertTo", knife);
    const NodeIndex from = AddMadeUp(name + "_ConvertFrom", knife);
    const auto formula = [&rest](Property wanted) {
        return std::find_if(
            rest.begin(), rest.end(), [wanted](const PropertyRecord& r) { return r.property == wanted; });
    };
    finish(to, count, {TextRecord(Property::FormulaTo, formula(Property::FormulaTo)->text)});
    finish(from, count, {TextRecord(Property::FormulaFrom, formula(Property::FormulaFrom)->text)});
    rest.push_back(Link(Property::pConvertTo, to));
    rest.push_back(Link(Property::pConvertFrom, from));
    Finish(builder.node, rest);
}

} // namespace

std::shared_ptr<const Description> ParseDescription(std::string_view xml)
{
    if (xml.size() > maxDescriptionSize)
    {
        throw RUNTIME_EXCEPTION("The description has %zu bytes; at most %zu are taken", xml.size(), maxDescriptionSize);
    }
    return Parser(WithoutPadding(xml)).Run();
}

} // namespace GENAPI_NAMESPACE::runtime
