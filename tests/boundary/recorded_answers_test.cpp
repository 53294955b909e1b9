// Descriptions with recorded answers of the reference runtime: the exports must return the same for every node. They
// lie in the folder that KORO_REFERENCE_DATA names.
#include "tests/boundary/described_camera.h"
#include "tests/boundary/recorded_files.h"
#include "tests/boundary/recorded_nodes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <sstream>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

namespace fs = std::filesystem;

using Strings = std::vector<std::string>;

// The memory over which the answers were recorded: a pattern of the address.
char PatternAt(std::uint64_t address)
{
    std::uint64_t hash = address * 0x9E3779B97F4A7C15u;
    hash ^= hash >> 29;
    return static_cast<char>((hash >> 16) & 0x7f);
}

KORO_ReturnCode CodeOf(const std::string& exceptionClass)
{
    if (exceptionClass == "AccessException") return KORO_RETURN_CODE_BAD_ACCESS;
    if (exceptionClass == "InvalidArgumentException") return KORO_RETURN_CODE_INVALID_ARGUMENT;
    if (exceptionClass == "OutOfRangeException") return KORO_RETURN_CODE_OUT_OF_RANGE;
    if (exceptionClass == "TimeoutException") return KORO_RETURN_CODE_TIMEOUT;
    return KORO_RETURN_CODE_ERROR;
}

std::string Text(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.12g", value);
    return text;
}
template <class Integer>
std::string Text(Integer value)
{
    return std::to_string(value);
}

std::string Escaped(const std::string& text)
{
    std::string escaped;
    for (const char character : text)
    {
        const auto byte = static_cast<unsigned char>(character);
        char code[8];
        std::snprintf(code, sizeof code, "\\x%02x", byte);
        escaped += byte < 32 || byte > 126 || byte == '\\' ? std::string(code) : std::string(1, character);
    }
    return escaped;
}

std::uint32_t Hash(const std::string& text)
{
    std::uint32_t hash = 2166136261u;
    for (const char character : text)
        hash = (hash ^ static_cast<unsigned char>(character)) * 16777619u;
    return hash;
}
std::string Digest(const std::string& text)
{
    return std::to_string(Hash(text)) + "/" + std::to_string(text.size());
}

// The last of twelve digits may differ.
bool AreSameFloats(const std::string& one, const std::string& other)
{
    std::istringstream ones(one);
    std::istringstream others(other);
    for (std::string a, b;;)
    {
        const bool isMore = bool(ones >> a);
        if (isMore != bool(others >> b)) return false;
        if (!isMore) return true;
        const double x = std::strtod(a.c_str(), nullptr);
        const double y = std::strtod(b.c_str(), nullptr);
        if (std::isnan(x) && std::isnan(y)) continue;
        if (x != y && !(std::abs(x - y) <= 5e-11 * std::max(std::abs(x), std::abs(y)))) return false;
    }
}

// What an export answered: its text as in the records, or a failure.
struct Answer
{
    KORO_ReturnCode code = KORO_RETURN_CODE_SUCCESS;
    std::string text{};
};

template <class Value, class Function, class... Arguments>
Answer Ask(Function function, Arguments... arguments)
{
    Value value{};
    const auto code = function(arguments..., &value);
    return {code, Text(value)};
}

// A text or the bytes of a list, in two calls.
template <class Element, class Function, class... Arguments>
Answer AskSized(std::vector<Element>* values, Function function, Arguments... arguments)
{
    std::size_t size = 0;
    Answer answer{function(arguments..., static_cast<Element*>(nullptr), &size)};
    if (answer.code != KORO_RETURN_CODE_SUCCESS) return answer;
    values->resize(size / sizeof(Element));
    if (size > 0) answer.code = function(arguments..., values->data(), &size);
    return answer;
}

template <class Function, class... Arguments>
Answer AskText(Function function, Arguments... arguments)
{
    std::vector<char> bytes;
    Answer answer = AskSized(&bytes, function, arguments...);
    if (!bytes.empty()) answer.text.assign(bytes.begin(), bytes.end() - 1);
    return answer;
}

template <class Element, class Handle>
Answer AskList(KORO_ReturnCode (*function)(Handle, Element*, std::size_t*), Handle handle)
{
    std::vector<Element> values;
    Answer answer = AskSized(&values, function, handle);
    for (const Element value : values)
        answer.text += Text(value) + " ";
    return answer;
}

std::string NameOf(KORO_NodeHandle node)
{
    return GetText(KORO_Node_GetName, node);
}

// "count name name ...".
template <class Handle>
Answer AskNodes(
    KORO_ReturnCode (*getCount)(Handle, std::size_t*),
    KORO_ReturnCode (*getNode)(Handle, std::size_t, KORO_NodeHandle*), Handle handle, Strings* names)
{
    std::size_t count = 0;
    Answer answer{getCount(handle, &count)};
    for (std::size_t index = 0; index < count; ++index)
        names->push_back(NameOf(Get<KORO_NodeHandle>(getNode, handle, index)));
    answer.text = std::to_string(count);
    for (const auto& name : *names)
        answer.text += " " + name;
    return answer;
}

// Names in order, or their hash if they are many.
Answer AskLinks(
    KORO_ReturnCode (*getCount)(KORO_NodeHandle, std::size_t*),
    KORO_ReturnCode (*getNode)(KORO_NodeHandle, std::size_t, KORO_NodeHandle*), KORO_NodeHandle node)
{
    Strings names;
    Answer answer = AskNodes(getCount, getNode, node, &names);
    std::sort(names.begin(), names.end());
    answer.text = std::to_string(names.size());
    std::string all;
    for (const auto& name : names)
    {
        all += name + "\n";
        if (names.size() <= 12) answer.text += " " + name;
    }
    if (names.size() > 12) answer.text += " #" + std::to_string(Hash(all));
    return answer;
}

// One node: asks in the order of the records, since what one question reads may be cached for the next.
class NodeComparison
{
public:
    NodeComparison(
        std::string nodeName, KORO_NodeHandle comparedNode, const RecordedNodes::Answers& recorded,
        bool hasItsRegisters, Strings* found)
        : name(std::move(nodeName)), node(comparedNode), answers(recorded), hasRegisters(hasItsRegisters),
          differences(*found)
    {}

    std::size_t Run()
    {
        Attributes();
        switch (Get<KORO_NodeType>(KORO_Node_GetType, node))
        {
        case KORO_NODE_TYPE_INTEGER:
            Integer(As(KORO_Node_ToIntegerNode));
            break;
        case KORO_NODE_TYPE_FLOAT:
            Float(As(KORO_Node_ToFloatNode));
            break;
        case KORO_NODE_TYPE_BOOLEAN:
            Dynamic("bval", Ask<KORO_Bool8>(KORO_BooleanNode_GetValue, As(KORO_Node_ToBooleanNode), usingCache));
            break;
        case KORO_NODE_TYPE_COMMAND:
            Dynamic("done", Ask<KORO_Bool8>(KORO_CommandNode_GetIsDone, As(KORO_Node_ToCommandNode)));
            break;
        case KORO_NODE_TYPE_STRING:
            String(As(KORO_Node_ToStringNode));
            break;
        case KORO_NODE_TYPE_REGISTER:
            Dynamic("raddr", Ask<std::uint64_t>(KORO_RegisterNode_GetAddress, As(KORO_Node_ToRegisterNode)));
            Dynamic("rlen", Ask<std::size_t>(KORO_RegisterNode_GetLength, As(KORO_Node_ToRegisterNode)));
            break;
        case KORO_NODE_TYPE_ENUMERATION:
            Enumeration(As(KORO_Node_ToEnumerationNode));
            break;
        case KORO_NODE_TYPE_ENUMERATION_ENTRY:
            Entry(As(KORO_Node_ToEnumerationEntryNode));
            break;
        case KORO_NODE_TYPE_CATEGORY:
            Category(As(KORO_Node_ToCategoryNode));
            break;
        default:
            break;
        }
        return compared;
    }

private:
    static constexpr KORO_NodeCachePolicy usingCache = KORO_NODE_CACHE_POLICY_USE_CACHE;

    template <class Handle>
    Handle As(KORO_ReturnCode (*cast)(KORO_NodeHandle, Handle*)) const
    {
        return Get<Handle>(cast, node);
    }

    void Attributes()
    {
        // The nine types of GenApi's numbers 2 to 10; all else is the last one.
        static constexpr int types[] = {9, 9, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
        const int principal = std::stoi(answers.at("type"));
        Compare("type", std::to_string(types[principal]), Ask<KORO_NodeType>(KORO_Node_GetType, node));
        Static("display", Escape(AskText(KORO_Node_GetDisplayName, node)));
        Static("ns", Ask<KORO_NodeNamespace>(KORO_Node_GetNamespace, node));
        Static("vis", Ask<KORO_NodeVisibility>(KORO_Node_GetVisibility, node));
        static const Strings modes{"NI", "NA", "WO", "RO", "RW", "_UndefinedAccesMode", "_CycleDetectAccesMode"};
        Answer status = Ask<KORO_NodeAccessStatus>(KORO_Node_GetAccessStatus, node);
        status.text = modes.at(std::stoul(status.text));
        Dynamic("acc", status);
        Static("cachemode", Ask<KORO_NodeCachingMode>(KORO_Node_GetCachingMode, node));
        Static("cachable", Ask<KORO_Bool8>(KORO_Node_GetIsCacheable, node));
        if (answers.at("acccachable")[0] != '!')
        {
            Compare(
                "acccachable", answers.at("acccachable") == "1" ? "1" : "0",
                Ask<KORO_Bool8>(KORO_Node_GetIsAccessStatusCacheable, node));
        }
        Static("poll", Ask<std::int64_t>(KORO_Node_GetPollingTime, node));
        Static("feature", Ask<KORO_Bool8>(KORO_Node_GetIsFeature, node));
        Static("depr", Ask<KORO_Bool8>(KORO_Node_GetIsDeprecated, node));
        Static("stream", Ask<KORO_Bool8>(KORO_Node_GetIsStreamable, node));
        Answer toolTip = AskText(KORO_Node_GetToolTip, node);
        toolTip.text = Digest(toolTip.text);
        Static("tip", toolTip);
        Answer description = AskText(KORO_Node_GetDescription, node);
        description.text = Digest(description.text);
        Static("descr", description);
        Static("link3", AskLinks(KORO_Node_GetNumInvalidatingNodes, KORO_Node_GetInvalidatingNode, node));
        Static("link4", AskLinks(KORO_Node_GetNumInvalidatedNodes, KORO_Node_GetInvalidatedNode, node));
        const auto isSelector = answers.find("issel");
        if (isSelector == answers.end() || isSelector->second != "1") return; // the library then lists neither
        Strings names;
        Static("selected", AskNodes(KORO_Node_GetNumSelectedNodes, KORO_Node_GetSelectedNode, node, &names));
        names.clear();
        Static("selecting", AskNodes(KORO_Node_GetNumSelectingNodes, KORO_Node_GetSelectingNode, node, &names));
    }

    void Integer(KORO_IntegerNodeHandle integer)
    {
        Dynamic("ival", Ask<std::int64_t>(KORO_IntegerNode_GetValue, integer, usingCache));
        Dynamic("imin", Ask<std::int64_t>(KORO_IntegerNode_GetMinimum, integer));
        Dynamic("imax", Ask<std::int64_t>(KORO_IntegerNode_GetMaximum, integer));
        Dynamic("iinc", Ask<std::int64_t>(KORO_IntegerNode_GetIncrement, integer));
        Dynamic("iincmode", Ask<KORO_NodeIncrementType>(KORO_IntegerNode_GetIncrementType, integer));
        Dynamic("irep", Ask<KORO_NodeRepresentation>(KORO_IntegerNode_GetRepresentation, integer));
        Static("iunit", Escape(AskText(KORO_IntegerNode_GetUnit, integer)));
        Dynamic("ilist", AskList<std::int64_t>(KORO_IntegerNode_GetValidValues, integer));
    }

    void Float(KORO_FloatNodeHandle number)
    {
        Dynamic("fval", Ask<double>(KORO_FloatNode_GetValue, number, usingCache));
        Dynamic("fmin", Ask<double>(KORO_FloatNode_GetMinimum, number));
        Dynamic("fmax", Ask<double>(KORO_FloatNode_GetMaximum, number));
        Dynamic("fhasinc", Ask<KORO_Bool8>(KORO_FloatNode_GetHasConstantIncrement, number));
        Dynamic("finc", Ask<double>(KORO_FloatNode_GetIncrement, number));
        Dynamic("fincmode", Ask<KORO_NodeIncrementType>(KORO_FloatNode_GetIncrementType, number));
        Dynamic("frep", Ask<KORO_NodeRepresentation>(KORO_FloatNode_GetRepresentation, number));
        Static("funit", Escape(AskText(KORO_FloatNode_GetUnit, number)));
        Dynamic("fnot", Ask<KORO_NodeDisplayNotation>(KORO_FloatNode_GetDisplayNotation, number));
        Dynamic("fprec", Ask<std::int64_t>(KORO_FloatNode_GetDisplayPrecision, number));
        Dynamic("flist", AskList<double>(KORO_FloatNode_GetValidValues, number));
    }

    void String(KORO_StringNodeHandle text)
    {
        Dynamic("sval", Escape(AskText(KORO_StringNode_GetValue, text, usingCache)));
        const Answer length = Ask<std::int64_t>(KORO_StringNode_GetMaximumLength, text);
        const auto recorded = answers.find("smaxlen");
        const bool isUnlimited = recorded != answers.end() && recorded->second[0] != '!' &&
                                 std::stoll(recorded->second) > 1 << 24 && std::stoll(length.text) > 1 << 24;
        if (!isUnlimited) Dynamic("smaxlen", length);
    }

    void Entry(KORO_EnumerationEntryNodeHandle entry)
    {
        Static("eeval", Ask<std::int64_t>(KORO_EnumerationEntryNode_GetValue, entry));
        Static("eesym", Escape(AskText(KORO_EnumerationEntryNode_GetSymbolicValue, entry)));
        Static("eeself", Ask<KORO_Bool8>(KORO_EnumerationEntryNode_GetIsSelfClearing, entry));
    }

    void Enumeration(KORO_EnumerationNodeHandle enumeration)
    {
        KORO_EnumerationEntryNodeHandle current = nullptr;
        Answer answer{KORO_EnumerationNode_GetCurrentEntry(enumeration, usingCache, &current)};
        if (current) answer.text = GetText(KORO_EnumerationEntryNode_GetSymbolicValue, current);
        const auto recorded = answers.find("encur");
        if (recorded != answers.end() && recorded->second == "(null)")
            EXPECT_NE(answer.code, KORO_RETURN_CODE_SUCCESS) << name;
        else if (current && Ask<std::int64_t>(KORO_EnumerationEntryNode_GetValue, current).text == answers.at("enval"))
            ++compared; // of several entries with one number the library returns the first
        else
            Dynamic("encur", answer);

        std::string names;
        const auto count = Get<std::size_t>(KORO_EnumerationNode_GetNumEntries, enumeration);
        for (std::size_t index = 0; index < count; ++index)
        {
            const auto entry = Get<KORO_EnumerationEntryNodeHandle>(KORO_EnumerationNode_GetEntry, enumeration, index);
            names += (index ? "," : "") + NameOf(Get<KORO_NodeHandle>(KORO_EnumerationEntryNode_ToNode, entry));
        }
        Static("entries", {KORO_RETURN_CODE_SUCCESS, names});
    }

    void Category(KORO_CategoryNodeHandle category)
    {
        Strings names;
        Static("features", AskNodes(KORO_CategoryNode_GetNumSubNodes, KORO_CategoryNode_GetSubNode, category, &names));
    }

    static Answer Escape(Answer answer)
    {
        answer.text = Escaped(answer.text);
        return answer;
    }

    // Answers that depend only on the description, and answers that depend on registers.
    void Static(const std::string& label, const Answer& answer)
    {
        const auto recorded = answers.find(label);
        if (recorded != answers.end()) Compare(label, recorded->second, answer);
    }
    void Dynamic(const std::string& label, const Answer& answer)
    {
        if (hasRegisters) Static(label, answer);
    }

    void Compare(const std::string& label, const std::string& recorded, const Answer& answer)
    {
        ++compared;
        const bool isFailure = recorded[0] == '!';
        const auto code = isFailure ? CodeOf(recorded.substr(1)) : KORO_RETURN_CODE_SUCCESS;
        const bool isSame = answer.code == code && (isFailure || answer.text == recorded ||
                                                    (label[0] == 'f' && AreSameFloats(answer.text, recorded)));
        if (isSame) return;
        differences.push_back(
            name + " " + label + ": recorded " + recorded + ", told " + answer.text + " with code " +
            std::to_string(answer.code));
    }

    const std::string name;
    const KORO_NodeHandle node;
    const RecordedNodes::Answers& answers;
    const bool hasRegisters;
    Strings& differences;
    std::size_t compared = 0;
};

class RecordedAnswers : public DescribedCamera
{
protected:
    void SetUp() override
    {
        const char* const data = std::getenv("KORO_REFERENCE_DATA");
        if (!data) GTEST_SKIP() << "KORO_REFERENCE_DATA does not name a folder";
        folder = data;
        Require(KORO_Device_Destruct(tree.device));
        producer->KeepJournal(false);
    }

    // The differences, in words.
    Strings CompareAll(const fs::path& description, const std::string& dump)
    {
        std::istringstream stream(dump);
        const RecordedNodes recorded(stream);
        std::string bytes = ContentOf(description);
        const bool lacksPort = recorded.Loads() && recorded.ports.empty();
        // The library refuses maps without a port, which the answers know.
        const auto end = bytes.rfind("</RegisterDescription>");
        if (lacksPort && end == std::string::npos) return {};
        if (lacksPort) bytes.insert(end, "<Port Name=\"AddedPort\"/>");
        const std::string port = lacksPort ? "AddedPort" : recorded.Loads() ? recorded.ports.front() : "Device";
        producer->Edit([&](scripted::Tree& edited) {
            constexpr std::uint64_t outOfTheWay = 0x7000'0000'0000'0000;
            scripted::Port& remote = RemotePort(edited);
            remote.registers.clear();
            remote.unwritten = PatternAt;
            remote.info[GenTL::PORT_INFO_PORTNAME] = scripted::Text(port);
            DescribePort(remote, bytes, "test.xml", outOfTheWay);
        });

        Answer opening{KORO_DeviceDescriptor_OpenDevice(tree.deviceDescriptor, 4, &tree.device)};
        Strings differences;
        if (opening.code == KORO_RETURN_CODE_SUCCESS)
        {
            tree.remoteDevice = Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, tree.device);
            // Without bytes there is nothing to fetch.
            opening.code = bytes.empty() ? CodeOf(recorded.failure)
                                         : CompareMap(NodeMapOf(tree.remoteDevice), recorded, lacksPort, &differences);
            Require(KORO_Device_Destruct(tree.device));
        }
        const auto expected = recorded.Loads() ? KORO_RETURN_CODE_SUCCESS : CodeOf(recorded.failure);
        if (opening.code != expected)
        {
            differences.push_back("loading: recorded " + recorded.failure + ", told " + std::to_string(opening.code));
        }
        return differences;
    }

    fs::path folder;
    std::size_t compared = 0;
    std::size_t descriptions = 0;

    void CompareFolder(const std::string& name)
    {
        for (const auto& entry : fs::directory_iterator(folder / name))
        {
            if (entry.path().extension() != ".xml") continue;
            SCOPED_TRACE(entry.path().filename().string());
            const Strings differences = CompareAll(entry.path(), RecordedAnswer(entry.path(), ".nodes"));
            ++descriptions;
            // Accidents of the build that was recorded, and an order of elements that our runtime does not ask for.
            const std::string file = entry.path().filename().string();
            if (file.rfind("quirk-", 0) == 0 || file.rfind("refused-child-order", 0) == 0) continue;
            EXPECT_THAT(differences, testing::IsEmpty());
        }
        std::cout << compared << " answers of " << descriptions << " descriptions compared\n";
    }

private:
    KORO_ReturnCode CompareMap(
        KORO_NodeMapHandle map, const RecordedNodes& recorded, bool hasAddedPort, Strings* differences)
    {
        std::size_t count = 0;
        const auto code = KORO_NodeMap_GetNumNodes(map, &count);
        if (code != KORO_RETURN_CODE_SUCCESS || !recorded.Loads()) return code;
        if (count != recorded.count + hasAddedPort) differences->push_back("number of nodes: " + std::to_string(count));
        for (const auto& [name, answers] : recorded.nodes)
        {
            const auto node = Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, map, name.c_str(), name.size() + 1);
            compared += NodeComparison(name, node, answers, recorded.ports.size() <= 1, differences).Run();
        }
        return code;
    }
};

} // namespace

TEST_F(RecordedAnswers, OfSmallDescriptionsAreThoseOfTheExports)
{
    CompareFolder("conformance");
    EXPECT_GT(compared, 10'000u);
}

TEST_F(RecordedAnswers, OfDescriptionsFoundByComparisonAreThoseOfTheExports)
{
    if (!fs::exists(folder / "conformance-second")) GTEST_SKIP() << "the folder has no conformance-second";
    CompareFolder("conformance-second");
    EXPECT_GT(compared, 1'000u);
}

TEST_F(RecordedAnswers, OfRealCamerasAreThoseOfTheExports)
{
    for (const auto& entry : fs::directory_iterator(folder / "camera-descriptions"))
    {
        if (entry.path().extension() != ".xml") continue;
        SCOPED_TRACE(entry.path().filename().string());
        EXPECT_THAT(CompareAll(entry.path(), RecordedAnswer(entry.path(), ".nodes")), testing::IsEmpty());
        ++descriptions;
    }
    std::cout << compared << " answers of " << descriptions << " descriptions compared\n";
    EXPECT_GT(compared, 100'000u);
}

} // namespace koro::test
