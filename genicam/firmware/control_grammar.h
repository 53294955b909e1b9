// The grammar of control files: the children of each element, their order, and the attributes.
#pragma once

#include <FirmwareUpdate/FirmwareUpdateProgressObserver.h>
#include <string_view>

namespace GENAPI_NAMESPACE::runtime
{

enum class Tag
{
    None,
    GufRuleSet,
    Procedure,
    FeatureWrite,
    FeatureExecute,
    FeatureAssert,
    FileUpload,
    DeviceReset,
    Description,
    ExpectedDurationMs,
    FeatureName,
    Value,
    MaximumExecutionTimeoutMs,
    AssertPattern,
    Message,
    DeviceFileName,
    FileName,
    DeviceDiscoveryDelayMs,
    Update,
    Info,
    Entry,
    Condition
};

// How often a child may occur in its element.
enum class Occurs
{
    Once,
    AtMostOnce,
    OnceOrMore,
    AnyNumber
};

struct ChildRule
{
    Tag tag = Tag::None;
    Occurs occurs = Occurs::Once;
};

struct AttributeRule
{
    const char* name = nullptr;
    bool required = false;
};

const size_t maxChildRules = 5;
const size_t maxAttributeRules = 2;

struct ElementRule
{
    Tag tag;
    const char* name;
    bool inAnyOrder; // the children
    bool text;
    AttributeRule attributes[maxAttributeRules];
    ChildRule children[maxChildRules]; // up to the first None
};

const ElementRule& RuleOf(Tag tag);
Tag FindTag(std::string_view name);
// Invalid: no step.
EFirmwareUpdateProgressStepType StepTypeOf(Tag tag);

} // namespace GENAPI_NAMESPACE::runtime
