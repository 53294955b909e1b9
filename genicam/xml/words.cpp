// The formats of property texts, and the words that some of them may contain.
#include "xml/elements.h"

#include <GenApi/Types.h>
#include <algorithm>
#include <iterator>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

using P = Property;

const std::string_view accessWords[] = {"", "", "WO", "RO", "RW"};
const std::string_view visibilityWords[] = {"Beginner", "Expert", "Guru", "Invisible"};
const std::string_view cachingWords[] = {"NoCache", "WriteThrough", "WriteAround"};
const std::string_view representationWords[] = {"Linear",    "Logarithmic", "Boolean",   "PureNumber",
                                                "HexNumber", "IPV4Address", "MACAddress"};
const std::string_view signWords[] = {"Signed", "Unsigned"};
const std::string_view endianWords[] = {"BigEndian", "LittleEndian"};
const std::string_view slopeWords[] = {"Increasing", "Decreasing", "Varying", "Automatic"};
const std::string_view notationWords[] = {"Automatic", "Fixed", "Scientific"};
const std::string_view yesNoWords[] = {"No", "Yes"};

struct Words
{
    const std::string_view* first;
    const std::string_view* last;
};

Words WordsOf(Property property)
{
    const auto list = [](const auto& words) { return Words{std::begin(words), std::end(words)}; };
    switch (property)
    {
    case P::AccessMode:
    case P::ImposedAccessMode:
        return list(accessWords);
    case P::Cachable:
        return list(cachingWords);
    case P::DisplayNotation:
        return list(notationWords);
    case P::Endianess:
        return list(endianWords);
    case P::Representation:
        return list(representationWords);
    case P::Sign:
        return list(signWords);
    case P::Slope:
        return list(slopeWords);
    case P::Visibility:
        return list(visibilityWords);
    default:
        return list(yesNoWords);
    }
}

} // namespace

Form FormOf(Element element, Property property)
{
    if (IsLink(property)) return Form::Link;
    const bool real = IsFloatKind(element);
    switch (property)
    {
    case P::ToolTip:
    case P::Description:
    case P::DisplayName:
        return Form::FilledText;
    case P::Min:
    case P::Max:
    case P::Inc:
    case P::ValueIndexed:
    case P::ValueDefault:
    case P::Constant:
        return real ? Form::Real : Form::Number;
    case P::NumericValue:
        return Form::Real;
    case P::Value:
        if (element == Element::Boolean) return Form::Boolean;
        if (element == Element::String) return Form::Text;
        return real ? Form::Real : Form::Number;
    case P::FeatureID:
        return element == Element::SmartFeature ? Form::Text : Form::Number;
    case P::Unit:
        return element == Element::ConfRom ? Form::Number : Form::Text;
    case P::Address:
    case P::Bit:
    case P::CommandValue:
    case P::DisplayPrecision:
    case P::Index:
    case P::Key:
    case P::LSB:
    case P::Length:
    case P::MSB:
    case P::OffValue:
    case P::Offset:
    case P::OnValue:
    case P::PollingTime:
    case P::Timeout:
        return Form::Number;
    case P::AccessMode:
    case P::Cachable:
    case P::CacheChunkData:
    case P::DisplayNotation:
    case P::Endianess:
    case P::ImposedAccessMode:
    case P::IsDeprecated:
    case P::IsLinear:
    case P::IsSelfClearing:
    case P::Representation:
    case P::Sign:
    case P::Slope:
    case P::Streamable:
    case P::SwapEndianess:
    case P::Visibility:
        return Form::Word;
    default:
        return Form::Text;
    }
}

int WordNumber(Element element, Property property, std::string_view word)
{
    const Words words = WordsOf(property);
    const std::string_view* const found = std::find(words.first, words.last, word);
    if (found == words.last || word.empty()) return -1;
    const int number = static_cast<int>(found - words.first);
    const bool integerOnly = number == GENAPI_NAMESPACE::Boolean || number > PureNumber;
    return property == P::Representation && IsFloatKind(element) && integerOnly ? -1 : number;
}

std::string_view WordOf(Property property, int number)
{
    return WordsOf(property).first[number];
}

} // namespace GENAPI_NAMESPACE::runtime
