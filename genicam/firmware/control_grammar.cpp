#include "firmware/control_grammar.h"

#include <algorithm>
#include <iterator>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const ChildRule descriptions = {Tag::Description, Occurs::OnceOrMore};
const ChildRule duration = {Tag::ExpectedDurationMs, Occurs::AtMostOnce};
const ChildRule feature = {Tag::FeatureName, Occurs::Once};

// In the order of Tag.
const ElementRule rules[] = {
    {Tag::GufRuleSet,
     "GufRuleSet",
     false,
     false,
     {{"SchemaMajorVersion", true}, {"SchemaMinorVersion", true}},
     {{Tag::Procedure, Occurs::OnceOrMore}, {Tag::Update, Occurs::OnceOrMore}}},
    {Tag::Procedure,
     "Procedure",
     true,
     false,
     {{"Id", true}},
     {{Tag::FeatureWrite, Occurs::AnyNumber},
      {Tag::FeatureExecute, Occurs::AnyNumber},
      {Tag::FeatureAssert, Occurs::AnyNumber},
      {Tag::FileUpload, Occurs::AnyNumber},
      {Tag::DeviceReset, Occurs::AnyNumber}}},
    {Tag::FeatureWrite, "FeatureWrite", false, false, {}, {descriptions, duration, feature, {Tag::Value}}},
    {Tag::FeatureExecute,
     "FeatureExecute",
     false,
     false,
     {},
     {descriptions, duration, feature, {Tag::MaximumExecutionTimeoutMs, Occurs::AtMostOnce}}},
    {Tag::FeatureAssert,
     "FeatureAssert",
     false,
     false,
     {},
     {descriptions, duration, feature, {Tag::AssertPattern}, {Tag::Message, Occurs::AtMostOnce}}},
    {Tag::FileUpload, "FileUpload", false, false, {}, {descriptions, duration, {Tag::DeviceFileName}, {Tag::FileName}}},
    {Tag::DeviceReset,
     "DeviceReset",
     false,
     false,
     {},
     {descriptions, duration, {Tag::DeviceDiscoveryDelayMs, Occurs::AtMostOnce}}},
    {Tag::Description, "Description", false, true, {{"Lang", false}}, {}},
    {Tag::ExpectedDurationMs, "ExpectedDurationMs", false, true, {}, {}},
    {Tag::FeatureName, "FeatureName", false, true, {}, {}},
    {Tag::Value, "Value", false, true, {}, {}},
    {Tag::MaximumExecutionTimeoutMs, "MaximumExecutionTimeoutMs", false, true, {}, {}},
    {Tag::AssertPattern, "AssertPattern", false, true, {}, {}},
    {Tag::Message, "Message", false, true, {{"Lang", false}}, {}},
    {Tag::DeviceFileName, "DeviceFileName", false, true, {}, {}},
    {Tag::FileName, "FileName", false, true, {}, {}},
    {Tag::DeviceDiscoveryDelayMs, "DeviceDiscoveryDelayMs", false, true, {}, {}},
    {Tag::Update, "Update", false, false, {{"ProcedureId", true}}, {{Tag::Info}, {Tag::Condition, Occurs::OnceOrMore}}},
    {Tag::Info, "Info", false, false, {}, {{Tag::Entry, Occurs::AnyNumber}}},
    {Tag::Entry, "Entry", false, true, {{"Key", true}, {"Lang", false}}, {}},
    {Tag::Condition, "Condition", false, true, {{"Feature", true}}, {}},
};

} // namespace

const ElementRule& RuleOf(Tag tag)
{
    return rules[static_cast<size_t>(tag) - 1];
}

Tag FindTag(std::string_view name)
{
    const auto found =
        std::find_if(std::begin(rules), std::end(rules), [name](const ElementRule& rule) { return rule.name == name; });
    return found == std::end(rules) ? Tag::None : found->tag;
}

EFirmwareUpdateProgressStepType StepTypeOf(Tag tag)
{
    switch (tag)
    {
    case Tag::FeatureWrite:
        return ProgressStepType_FeatureWrite;
    case Tag::FeatureExecute:
        return ProgressStepType_FeatureExecute;
    case Tag::FeatureAssert:
        return ProgressStepType_FeatureAssert;
    case Tag::FileUpload:
        return ProgressStepType_FileUpload;
    case Tag::DeviceReset:
        return ProgressStepType_DeviceReset;
    default:
        return ProgressStepType_Invalid;
    }
}

} // namespace GENAPI_NAMESPACE::runtime
