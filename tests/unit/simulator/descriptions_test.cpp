// The descriptions as documents: well-formed, in the order of the schema, without duplicates and dangling links.
#include "tests/unit/simulator/feature_map.h"

#include <expat.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>

namespace koro::simulator::test
{
namespace
{

// The order of children in schema 1.1, written from the standard; "+" stands for the common part, "#" for the register
// part.
const std::string commonPart =
    "Extension ToolTip Description DisplayName Visibility DocuURL IsDeprecated EventID pIsImplemented pIsAvailable "
    "pIsLocked pBlockPolling ImposedAccessMode pError pAlias pCastAlias ";
// Address parts are a group in any order; none here mixes them, so one place each is enough.
const std::string registerPart = "Streamable Address IntSwissKnife pAddress pIndex Length pLength AccessMode pPort "
                                 "Cachable PollingTime pInvalidator ";
const std::map<std::string, std::string> orders = {
    {"Category", "+ pInvalidator pFeature"},
    {"Port", "+ pInvalidator ChunkID pChunkID SwapEndianess CacheChunkData"},
    {"Integer", "+ pInvalidator Streamable Value pValueCopy pValue Min pMin Max pMax Inc pInc Unit Representation "
                "ValidValueSet pSelected"},
    {"IntReg", "+ # Sign Endianess Unit Representation pSelected"},
    {"MaskedIntReg", "+ # Bit LSB MSB Sign Endianess Unit Representation pSelected"},
    {"IntSwissKnife", "+ pInvalidator Streamable pVariable Constant Expression Formula Unit Representation"},
    {"SwissKnife", "+ pInvalidator Streamable pVariable Constant Expression Formula Unit Representation "
                   "DisplayNotation DisplayPrecision"},
    {"IntConverter", "+ pInvalidator Streamable pVariable Constant Expression FormulaTo FormulaFrom pValue Unit "
                     "Representation Slope"},
    {"Converter", "+ pInvalidator Streamable pVariable Constant Expression FormulaTo FormulaFrom pValue Unit "
                  "Representation DisplayNotation DisplayPrecision Slope IsLinear"},
    {"Float", "+ pInvalidator Streamable Value pValue Min pMin Max pMax Inc pInc Unit Representation DisplayNotation "
              "DisplayPrecision"},
    {"FloatReg", "+ # Endianess Unit Representation DisplayNotation DisplayPrecision"},
    {"Boolean", "+ pInvalidator Streamable Value pValue OnValue OffValue pSelected"},
    {"Command", "+ pInvalidator Value pValue CommandValue pCommandValue PollingTime"},
    {"Enumeration", "+ pInvalidator Streamable EnumEntry Value pValue pSelected PollingTime"},
    {"EnumEntry", "+ pInvalidator Value NumericValue Symbolic IsSelfClearing"},
    {"String", "+ pInvalidator Streamable Value pValue"},
    {"StringReg", "+ #"},
    {"Register", "+ #"},
    {"StructReg", "+ # Endianess StructEntry"},
    {"StructEntry", "+ pInvalidator AccessMode Cachable PollingTime Streamable Bit LSB MSB Sign Unit Representation "
                    "pSelected"},
};
const std::set<std::string> repeatable = {"pInvalidator", "pFeature",  "pSelected", "pVariable",   "Constant",
                                          "Expression",   "EnumEntry", "Address",   "StructEntry", "pError",
                                          "pAddress",     "pIndex",    "pValueCopy"};

std::vector<std::string> OrderOf(const std::string& element)
{
    std::string text = orders.at(element);
    if (const auto at = text.find('#'); at != std::string::npos) text.replace(at, 1, registerPart);
    text.replace(0, 1, commonPart);
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

// Walks one document and reports what the schema would not take.
class SchemaCheck
{
public:
    explicit SchemaCheck(const std::string& document)
    {
        const XML_Parser parser = XML_ParserCreateNS(nullptr, '|');
        XML_SetUserData(parser, this);
        XML_SetElementHandler(parser, OnStart, OnEnd);
        XML_SetCharacterDataHandler(parser, OnText);
        const auto status = XML_Parse(parser, document.data(), static_cast<int>(document.size()), 1);
        EXPECT_EQ(status, XML_STATUS_OK) << XML_ErrorString(XML_GetErrorCode(parser)) << " in line "
                                         << XML_GetCurrentLineNumber(parser);
        XML_ParserFree(parser);
        for (const std::string& link : links)
            EXPECT_TRUE(names.count(link) == 1) << "nothing is called " << link;
    }

    std::set<std::string> names;

private:
    struct Open
    {
        std::string element;
        std::string name;
        std::string text;
        std::size_t place = 0;
        std::string last;
    };

    static void OnStart(void* self, const char* element, const char** attributes)
    {
        static_cast<SchemaCheck*>(self)->Start(element, attributes);
    }
    static void OnEnd(void* self, const char*) { static_cast<SchemaCheck*>(self)->End(); }
    static void OnText(void* self, const char* text, int length)
    {
        static_cast<SchemaCheck*>(self)->open.back().text.append(text, static_cast<std::size_t>(length));
    }

    void Start(const std::string& qualified, const char** attributes)
    {
        const std::string space = "http://www.genicam.org/GenApi/Version_1_1|";
        ASSERT_EQ(qualified.substr(0, space.size()), space);
        Open started{qualified.substr(space.size()), {}, {}, 0, {}};
        std::set<std::string> present;
        for (; *attributes != nullptr; attributes += 2)
        {
            present.insert(attributes[0]);
            if (std::string("Name") == attributes[0]) started.name = attributes[1];
        }
        if (open.empty())
            CheckRoot(started.element, present);
        else
            CheckPlace(started);
        if (orders.count(started.element) == 1 && started.element != "StructReg" && started.element != "EnumEntry")
        {
            EXPECT_TRUE(names.insert(started.name).second) << "two nodes are called " << started.name;
        }
        open.push_back(std::move(started));
    }

    static void CheckRoot(const std::string& element, const std::set<std::string>& present)
    {
        EXPECT_EQ(element, "RegisterDescription");
        for (const char* name :
             {"ModelName", "VendorName", "StandardNameSpace", "SchemaMajorVersion", "SchemaMinorVersion",
              "SchemaSubMinorVersion", "MajorVersion", "MinorVersion", "SubMinorVersion", "ProductGuid", "VersionGuid"})
            EXPECT_EQ(present.count(name), 1U) << name;
    }

    void CheckPlace(const Open& started)
    {
        Open& parent = open.back();
        if (open.size() == 1 || parent.element == "Group") return;
        ASSERT_EQ(orders.count(parent.element), 1U) << "the schema has no " << parent.element;
        const auto order = OrderOf(parent.element);
        const auto found = std::find(order.begin(), order.end(), started.element);
        ASSERT_NE(found, order.end()) << started.element << " in " << parent.name;
        const auto place = static_cast<std::size_t>(found - order.begin());
        EXPECT_GE(place, parent.place) << started.element << " comes too late in " << parent.name;
        if (repeatable.count(started.element) == 0)
        {
            EXPECT_NE(started.element, parent.last) << "twice in " << parent.name;
        }
        parent.place = place;
        parent.last = started.element;
    }

    void End()
    {
        const Open& ended = open.back();
        const bool isLink = ended.element.size() > 1 && ended.element[0] == 'p' && std::isupper(ended.element[1]) != 0;
        if (isLink) links.push_back(ended.text);
        open.pop_back();
    }

    std::vector<Open> open;
    std::vector<std::string> links;
};

void CheckPort(const Producer& producer, PORT_HANDLE port)
{
    const SchemaCheck check(FetchDescription(producer, port));
    EXPECT_EQ(check.names.count("Root"), 1U);
    EXPECT_EQ(check.names.count(producer.Get(producer.GCGetPortInfo, port, PORT_INFO_PORTNAME)), 1U);
}

TEST(SimulatorDescriptions, OfModulesFollowTheSchema)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    for (void* const port : {tree.system, tree.interface, tree.device, tree.stream})
    {
        SCOPED_TRACE(producer.Get(producer.GCGetPortInfo, port, PORT_INFO_PORTNAME));
        CheckPort(producer, port);
    }
}

TEST(SimulatorDescriptions, OfCamerasFollowTheSchema)
{
    for (const char* const type : {"GEV", "U3V", "IIDC", "CL", "Custom"})
    {
        SCOPED_TRACE(type);
        const Producer producer(
            R"({"interfaces": [{"id": "I", "tlType": ")" + std::string(type) + R"(", "cameras": [{"serial": "A"}]}]})");
        CheckPort(producer, Tree(producer).remote);
    }
}

} // namespace
} // namespace koro::simulator::test
