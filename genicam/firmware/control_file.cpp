#include "firmware/control_file.h"

#include "base/quoted.h"
#include "firmware/bounds.h"
#include "firmware/control_grammar.h"
#include "xml/xml_reader.h"

#include <Base/GCException.h>
#include <algorithm>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const std::string_view elementPrefix = "http://www.genicam.org/GenFwUpdate/Version_1_0|";
const std::string_view instancePrefix = "http://www.w3.org/2001/XMLSchema-instance|"; // hints for schema checkers
const std::string_view blanks = " \t\r\n";

std::string_view WithoutBlanks(std::string_view text)
{
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string QuotedAndShown(std::string_view text)
{
    return Quoted(Shown(text));
}

bool IsDigit(char letter)
{
    return letter >= '0' && letter <= '9';
}

// A letter, then letters, digits and underscores.
bool IsName(std::string_view text)
{
    const auto isLetter = [](char letter) { return (letter | 0x20) >= 'a' && (letter | 0x20) <= 'z'; };
    return !text.empty() && isLetter(text[0]) && std::all_of(text.begin(), text.end(), [&](char letter) {
        return isLetter(letter) || IsDigit(letter) || letter == '_';
    });
}

// False: no unsigned decimal number within 32 bits.
bool ReadNumber(std::string_view text, uint32_t& number)
{
    if (text.empty() || !std::all_of(text.begin(), text.end(), IsDigit)) return false;
    uint64_t value = 0;
    for (const char digit : text)
    {
        value = value * 10 + static_cast<uint64_t>(digit - '0');
        if (value > UINT32_MAX) return false;
    }
    number = static_cast<uint32_t>(value);
    return true;
}

// An element that has begun and not ended.
struct OpenElement
{
    const ElementRule* rule;
    size_t child = 0;       // the rule of the last child, the first one at the beginning
    bool childSeen = false; // at least once
};

class Parser final : private XmlHandler
{
public:
    Parser(std::string_view xml, const OnUpdateRules& callback) : reader(xml, *this), onUpdate(callback) {}
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    Procedures Run()
    {
        reader.Run();
        return std::move(procedures);
    }

private:
    void Start(std::string_view name, const XmlAttributes& attributes) override;
    void End() override;
    void Text(std::string_view part) override;
    std::string Where() const override { return {}; }

    GENICAM_NAMESPACE::RuntimeException Error(const std::string& what) const { return reader.Error(what); }

    void EnterChild(const ElementRule& rule);
    void RequireSeen(const OpenElement& element) const;
    void CheckAttributes(const ElementRule& rule, const XmlAttributes& attributes);
    void Begin(Tag tag);
    void Finish(Tag tag);
    void CountText(size_t size);

    std::string Attribute(const char* name) const;
    std::string Name(std::string_view given) const;
    uint32_t Number(std::string_view given) const;
    Step& CurrentStep() { return procedure->steps.back(); }

    XmlReader reader;
    const OnUpdateRules& onUpdate; // false ends the reading

    std::vector<OpenElement> open;
    size_t elements = 0;
    size_t patterns = 0;                            // of conditions and assertions
    size_t textSize = 0;                            // of all texts and attributes
    const XmlAttributes* startAttributes = nullptr; // of the element that begins
    std::string text;                               // of the open element
    LanguageText languageText;                      // its language
    std::string key;                                // of the open entry

    Procedures procedures;
    Procedure* procedure = nullptr; // the open property
    UpdateRules update;
};

void Parser::Start(std::string_view name, const XmlAttributes& attributes)
{
    if (++elements > maxControlElements)
        throw Error("there are more than " + std::to_string(maxControlElements) + " elements");
    const bool known = name.substr(0, elementPrefix.size()) == elementPrefix;
    const Tag tag = known ? FindTag(name.substr(elementPrefix.size())) : Tag::None;
    const bool misplaced = open.empty() && tag != Tag::GufRuleSet;
    if (tag == Tag::None || misplaced) throw Error("unexpected element encountered: " + QuotedAndShown(name));

    const bool hasPattern = tag == Tag::Condition || tag == Tag::AssertPattern;
    if (hasPattern && ++patterns > maxControlPatterns)
        throw Error("there are more than " + std::to_string(maxControlPatterns) + " patterns");

    const ElementRule& rule = RuleOf(tag);
    if (!open.empty()) EnterChild(rule);
    CheckAttributes(rule, attributes);
    open.push_back({&rule});
    text.clear();
    startAttributes = &attributes;
    Begin(tag);
}

// Moves on in the order of children, past those that may be absent.
void Parser::EnterChild(const ElementRule& rule)
{
    OpenElement& parent = open.back();
    const auto begin = std::begin(parent.rule->children);
    const auto end = std::find_if(
        begin, std::end(parent.rule->children), [](const ChildRule& child) { return child.tag == Tag::None; });
    const auto found = std::find_if(begin, end, [&](const ChildRule& child) { return child.tag == rule.tag; });
    if (found == end) throw Error("unexpected element encountered: " + QuotedAndShown(rule.name));
    if (parent.rule->inAnyOrder) return;

    const size_t place = static_cast<size_t>(found - begin);
    const bool repeats = found->occurs == Occurs::OnceOrMore || found->occurs == Occurs::AnyNumber;
    if (place < parent.child || (place == parent.child && parent.childSeen && !repeats))
    {
        throw Error("unexpected element encountered: " + QuotedAndShown(rule.name));
    }
    for (; parent.child < place; ++parent.child)
    {
        RequireSeen(parent);
        parent.childSeen = false;
    }
    parent.childSeen = true;
}

void Parser::RequireSeen(const OpenElement& element) const
{
    const ChildRule& child = element.rule->children[element.child];
    const bool needed = child.occurs == Occurs::Once || child.occurs == Occurs::OnceOrMore;
    if (child.tag == Tag::None || !needed || element.childSeen) return;
    throw Error("expected element not encountered: " + QuotedAndShown(RuleOf(child.tag).name));
}

void Parser::CheckAttributes(const ElementRule& rule, const XmlAttributes& attributes)
{
    attributes.ForEach([&](std::string_view name, std::string_view value) {
        CountText(name.size() + value.size());
        const bool known =
            std::any_of(std::begin(rule.attributes), std::end(rule.attributes), [name](const AttributeRule& taken) {
                return taken.name && name == taken.name;
            });
        const bool hint = name.substr(0, instancePrefix.size()) == instancePrefix;
        if (!known && !hint) throw Error("unexpected attribute encountered: " + QuotedAndShown(name));
    });
    for (const AttributeRule& attribute : rule.attributes)
    {
        if (!attribute.required || attributes.Find(attribute.name)) continue;
        throw Error("expected attribute not encountered: " + QuotedAndShown(attribute.name));
    }
}

// Empty when absent.
std::string Parser::Attribute(const char* name) const
{
    const char* const value = startAttributes->Find(name);
    return value ? value : "";
}

std::string Parser::Name(std::string_view given) const
{
    const std::string_view name = WithoutBlanks(given);
    if (!IsName(name)) throw Error("invalid name: " + QuotedAndShown(given));
    return std::string(name);
}

uint32_t Parser::Number(std::string_view given) const
{
    uint32_t number = 0;
    if (!ReadNumber(WithoutBlanks(given), number)) throw Error("invalid number: " + QuotedAndShown(given));
    return number;
}

void Parser::Begin(Tag tag)
{
    if (const auto type = StepTypeOf(tag); type != ProgressStepType_Invalid)
    {
        procedure->steps.emplace_back().type = type;
        return;
    }
    switch (tag)
    {
    case Tag::GufRuleSet:
        Number(Attribute("SchemaMajorVersion"));
        Number(Attribute("SchemaMinorVersion"));
        break;
    case Tag::Procedure: {
        const auto [place, inserted] = procedures.try_emplace(Name(Attribute("Id")));
        if (!inserted) throw Error("there are two procedures " + QuotedAndShown(place->first));
        procedure = &place->second;
        break;
    }
    case Tag::Update:
        update = UpdateRules();
        update.procedureId = Name(Attribute("ProcedureId"));
        break;
    case Tag::Entry:
        key = Attribute("Key");
        languageText.language = Attribute("Lang");
        break;
    case Tag::Description:
        languageText.language = Attribute("Lang");
        break;
    case Tag::Condition:
        update.conditions.push_back({Name(Attribute("Feature")), {}});
        break;
    default:
        break;
    }
}

void Parser::Text(std::string_view part)
{
    CountText(part.size());
    if (open.back().rule->text)
    {
        text.append(part);
    }
    else if (part.find_first_not_of(blanks) != std::string_view::npos)
    {
        throw Error("unexpected characters encountered: " + QuotedAndShown(part));
    }
}

// Entities make a text longer than the file.
void Parser::CountText(size_t size)
{
    textSize += size;
    if (textSize > maxControlTextSize)
    {
        throw Error("the texts have more than " + std::to_string(maxControlTextSize) + " bytes");
    }
}

void Parser::End()
{
    OpenElement& ended = open.back();
    for (; !ended.rule->inAnyOrder && ended.child < maxChildRules; ++ended.child)
    {
        RequireSeen(ended);
        ended.childSeen = false;
    }
    const Tag tag = ended.rule->tag;
    open.pop_back();
    Finish(tag);
}

void Parser::Finish(Tag tag)
{
    switch (tag)
    {
    case Tag::Description:
        CurrentStep().descriptions.push_back({std::move(languageText.language), text});
        break;
    case Tag::ExpectedDurationMs:
        CurrentStep().duration_ms = Number(text);
        procedure->duration_ms += CurrentStep().duration_ms;
        break;
    case Tag::FeatureName:
        CurrentStep().feature = WithoutBlanks(text);
        break;
    case Tag::Value:
    case Tag::AssertPattern:
        CurrentStep().value = text;
        break;
    case Tag::MaximumExecutionTimeoutMs:
        CurrentStep().limit_ms = Number(text);
        break;
    case Tag::Message:
        CurrentStep().message = text;
        break;
    case Tag::DeviceFileName:
        CurrentStep().deviceFile = Name(text);
        break;
    case Tag::FileName:
        CurrentStep().file = text;
        break;
    case Tag::DeviceDiscoveryDelayMs:
        CurrentStep().delay_ms = Number(text);
        break;
    case Tag::Entry:
        update.entries.push_back({std::move(key), {std::move(languageText.language), text}});
        break;
    case Tag::Condition:
        update.conditions.back().pattern = text;
        break;
    case Tag::Update:
        if (!onUpdate(update, procedures)) reader.Stop();
        break;
    default:
        break;
    }
}

} // namespace

Procedures ParseControlFile(std::string_view xml, const OnUpdateRules& onUpdate)
{
    if (xml.size() > maxControlFileSize)
    {
        throw RUNTIME_EXCEPTION(
            "The control file has %zu bytes; at most %zu are taken", xml.size(), maxControlFileSize);
    }
    return Parser(xml, onUpdate).Run();
}

} // namespace GENAPI_NAMESPACE::runtime
