// Calls every export that the headers declare in the ways that all of them answer alike.

#include "tests/boundary/described_camera.h"
#include "tests/support/boundary.h"
#include "tests/support/environment_variable.h"
#include "tests/support/scripted_producer.h"
#include "tests/support/update_files.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <type_traits>

namespace
{

using namespace koro::test;

using Word = std::uintptr_t; // any argument of any export
using Words = std::vector<Word>;

struct Parameter
{
    std::string type;
    std::string name;

    bool IsPointer() const { return type.back() == '*'; }
    bool IsHandle() const { return EndsWith("Handle"); }
    bool IsCallback() const { return EndsWith("Callback"); }

private:
    bool EndsWith(const std::string& end) const
    {
        return type.size() > end.size() && type.compare(type.size() - end.size(), end.size(), end) == 0;
    }
};

struct Export
{
    std::string name;
    std::vector<Parameter> parameters;
    std::function<KORO_ReturnCode(const Words&)> call;
};

template <class Target>
Target FromWord(Word word)
{
    if constexpr (std::is_pointer_v<Target>)
    {
        return reinterpret_cast<Target>(word);
    }
    else
    {
        return static_cast<Target>(word);
    }
}

template <class... Parameters, std::size_t... indices>
KORO_ReturnCode CallWith(
    KORO_ReturnCode (*function)(Parameters...), const Words& words, std::index_sequence<indices...>)
{
    return function(FromWord<Parameters>(words.at(indices))...);
}

// "char* key, size_t* keySize" in pieces.
std::vector<Parameter> ParseParameters(const std::string& text)
{
    std::vector<Parameter> parameters;
    if (text == "void") return parameters;
    for (std::size_t begin = 0; begin < text.size();)
    {
        const auto end = std::min(text.find(", ", begin), text.size());
        const auto blank = text.rfind(' ', end - 1);
        parameters.push_back({text.substr(begin, blank - begin), text.substr(blank + 1, end - blank - 1)});
        begin = end + 2;
    }
    return parameters;
}

template <class... Parameters>
Export MakeExport(const char* name, const char* parameters, KORO_ReturnCode (*function)(Parameters...))
{
    return {name, ParseParameters(parameters), [function](const Words& words) {
                return CallWith(function, words, std::index_sequence_for<Parameters...>());
            }};
}

const std::vector<Export>& AllExports()
{
    static const std::vector<Export> exports = {
#define KORO_EXPORT(name, parameters) MakeExport(#name, parameters, name),
#include "declared_exports.inc"
#undef KORO_EXPORT
    };
    return exports;
}

// Arguments that are valid in themselves: room for every output, a callback, and the handles that are given.
class Arguments
{
public:
    explicit Arguments(const Export& called, const std::map<std::string, Word>& handles = {})
        : room(called.parameters.size())
    {
        for (std::size_t index = 0; index < called.parameters.size(); ++index)
        {
            const auto& parameter = called.parameters[index];
            if (parameter.IsPointer())
                words.push_back(PlaceFor(parameter, room[index]));
            else if (parameter.IsCallback())
                words.push_back(reinterpret_cast<Word>(&DoNothing));
            else
                words.push_back(handles.count(parameter.type) ? handles.at(parameter.type) : 0);
        }
    }

    Words words;

private:
    static constexpr std::size_t roomSize = 4096;
    using Room = std::array<std::uint64_t, roomSize / sizeof(std::uint64_t)>;

    static void DoNothing() {}

    static Word PlaceFor(const Parameter& parameter, Room& place)
    {
        place.fill(0);
        if (parameter.type == "size_t*") place[0] = roomSize;
        return reinterpret_cast<Word>(place.data());
    }

    std::vector<Room> room;
};

// All kinds of handles that the exports take, open on a producer that answers every query.
class EveryHandle
{
public:
    explicit EveryHandle(ScriptedProducer& producer) : tree(Described(producer).Path())
    {
        const auto buffers = tree.QueueBuffers(1);
        Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
        producer->Deliver("if0-dev0-stream0", FrameThatAnswersAll());
        Require(KORO_DataStream_WaitForFinishedBuffer(tree.stream, 0, &buffer));
        Require(KORO_Buffer_UpdateChunks(buffer));
        Require(KORO_Buffer_UpdateParts(buffer));

        const auto module = Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system);
        const auto port = Get<KORO_PortHandle>(KORO_Module_GetPort, module);
        const auto remoteModule = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
        const auto nodeMap = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, remoteModule, std::size_t{0});
        const auto node = [&](const std::string& name) {
            return Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, nodeMap, name.c_str(), name.size() + 1);
        };
        const auto source = Get<KORO_EventSupportingModuleHandle>(KORO_System_ToEventSupportingModule, tree.system);
        const auto controller =
            Get<KORO_EventControllerHandle>(KORO_EventSupportingModule_EnableEvents, source, moduleEvents);
        producer->Fire("system", moduleEvents, "block");

        Enter("KORO_ProducerLibraryHandle", tree.producerLibrary);
        Enter("KORO_SystemDescriptorHandle", tree.systemDescriptor);
        Enter("KORO_SystemHandle", tree.system);
        Enter("KORO_InterfaceDescriptorHandle", tree.interfaceDescriptor);
        Enter("KORO_InterfaceHandle", tree.interface);
        Enter("KORO_DeviceDescriptorHandle", tree.deviceDescriptor);
        Enter("KORO_DeviceHandle", tree.device);
        Enter("KORO_RemoteDeviceHandle", tree.remoteDevice);
        Enter("KORO_DataStreamDescriptorHandle", tree.streamDescriptor);
        Enter("KORO_DataStreamHandle", tree.stream);
        Enter("KORO_BufferHandle", buffer);
        Enter("KORO_BufferChunkHandle", Get<KORO_BufferChunkHandle>(KORO_Buffer_GetChunk, buffer, std::size_t{0}));
        Enter("KORO_BufferPartHandle", Get<KORO_BufferPartHandle>(KORO_Buffer_GetPart, buffer, std::size_t{0}));
        Enter("KORO_ModuleHandle", module);
        Enter(
            "KORO_ModuleDescriptorHandle",
            Get<KORO_ModuleDescriptorHandle>(KORO_DeviceDescriptor_ToModuleDescriptor, tree.deviceDescriptor));
        Enter("KORO_PortHandle", port);
        Enter("KORO_PortURLHandle", Get<KORO_PortURLHandle>(KORO_Port_GetURL, port, std::size_t{0}));
        Enter("KORO_NodeMapHandle", nodeMap);
        Enter("KORO_NodeHandle", node("Plain"));
        Enter("KORO_IntegerNodeHandle", Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, node("Integer")));
        Enter("KORO_FloatNodeHandle", Get<KORO_FloatNodeHandle>(KORO_Node_ToFloatNode, node("Float")));
        Enter("KORO_BooleanNodeHandle", Get<KORO_BooleanNodeHandle>(KORO_Node_ToBooleanNode, node("Boolean")));
        Enter("KORO_CommandNodeHandle", Get<KORO_CommandNodeHandle>(KORO_Node_ToCommandNode, node("Command")));
        Enter("KORO_StringNodeHandle", Get<KORO_StringNodeHandle>(KORO_Node_ToStringNode, node("String")));
        Enter("KORO_RegisterNodeHandle", Get<KORO_RegisterNodeHandle>(KORO_Node_ToRegisterNode, node("Register")));
        Enter("KORO_CategoryNodeHandle", Get<KORO_CategoryNodeHandle>(KORO_Node_ToCategoryNode, node("Category")));
        Enter(
            "KORO_EnumerationNodeHandle",
            Get<KORO_EnumerationNodeHandle>(KORO_Node_ToEnumerationNode, node("Enumeration")));
        Enter(
            "KORO_EnumerationEntryNodeHandle",
            Get<KORO_EnumerationEntryNodeHandle>(KORO_Node_ToEnumerationEntryNode, node("EnumEntry_Enumeration_On")));
        Enter("KORO_EventSupportingModuleHandle", source);
        Enter("KORO_EventControllerHandle", controller);
        Enter(
            "KORO_DeviceDescriptorInformationChangedCallbackHandle",
            Get<KORO_DeviceDescriptorInformationChangedCallbackHandle>(
                KORO_DeviceDescriptor_RegisterInformationChangedCallback, tree.deviceDescriptor, &Ignore, nullptr));
        Enter(
            "KORO_EventHandle", Get<KORO_EventHandle>(KORO_EventController_WaitForEvent, controller, std::uint64_t{0}));
        EnterFirmware();
    }

    std::map<std::string, Word> byType;

private:
    static ScriptedProducer& Described(ScriptedProducer& producer)
    {
        producer->Edit([](scripted::Tree& edited) {
            DescribePort(edited.interfaces[0]->devices[0]->remotePort, DescriptionOf(oneOfEach));
        });
        return producer;
    }

    static void Ignore(const std::int32_t*, std::size_t, void*) {}

    static constexpr std::int32_t moduleEvents = KORO_EVENT_MODULE;

    static scripted::Frame FrameThatAnswersAll()
    {
        scripted::Frame frame;
        frame.info = {
            {GenTL::BUFFER_INFO_CHUNKLAYOUTID, scripted::UInt64(7)},
            {GenTL::BUFFER_INFO_FILENAME, scripted::Text("file")},
            {GenTL::BUFFER_INFO_PIXEL_ENDIANNESS, scripted::Int32(GenTL::PIXELENDIANNESS_LITTLE)},
        };
        frame.chunks = {{1, 0, 1}};
        frame.parts = {PartThatAnswersAll()};
        return frame;
    }

    static scripted::Infos PartThatAnswersAll()
    {
        using namespace GenTL;
        scripted::Infos part = {
            {BUFFER_PART_INFO_BASE, scripted::Pointer(nullptr)},
            {BUFFER_PART_INFO_DATA_FORMAT, scripted::UInt64(0)},
            {BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE, scripted::UInt64(0)},
            {BUFFER_PART_INFO_SOURCE_ID, scripted::UInt64(0)},
        };
        for (const auto command :
             {BUFFER_PART_INFO_DATA_SIZE, BUFFER_PART_INFO_DATA_TYPE, BUFFER_PART_INFO_WIDTH, BUFFER_PART_INFO_HEIGHT,
              BUFFER_PART_INFO_XOFFSET, BUFFER_PART_INFO_YOFFSET, BUFFER_PART_INFO_XPADDING,
              BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT})
            part[command] = scripted::Size(0);
        return part;
    }

    void EnterFirmware()
    {
        const UpdateFileOnDisk file = WithControl(Control(Procedure("") + Update()));
        KORO_FirmwareUpdaterHandle updater = nullptr;
        Require(KORO_FirmwareUpdater_Construct(&updater));
        Require(
            KORO_FirmwareUpdater_CollectAllFirmwareUpdateInformation(updater, file.path.c_str(), file.path.size() + 1));
        KORO_FirmwareUpdateProgressObserverHandle observer = nullptr;
        Require(KORO_FirmwareUpdateProgressObserver_Construct(&observer));
        Enter("KORO_FirmwareUpdaterHandle", updater);
        Enter(
            "KORO_FirmwareUpdateInformationHandle",
            Get<KORO_FirmwareUpdateInformationHandle>(
                KORO_FirmwareUpdater_GetFirmwareUpdateInformation, updater, std::size_t{0}));
        Enter("KORO_FirmwareUpdateProgressObserverHandle", observer);
    }

    template <class Handle>
    void Enter(const std::string& type, Handle handle)
    {
        byType[type] = reinterpret_cast<Word>(handle);
    }

    OpenTree tree;
    KORO_BufferHandle buffer = nullptr;
};

bool IsExemptFromInitialization(const Export& called)
{
    static const std::set<std::string> exempt = {
        "KORO_Library_Initialize", "KORO_Library_Close", "KORO_Library_IsInitialized", "KORO_Library_GetLastError"};
    return exempt.count(called.name) > 0;
}

bool BeginsWithHandle(const Export& called)
{
    return !called.parameters.empty() && called.parameters[0].IsHandle();
}

// Of the handle that is looked at first; one export ignores the one in front.
std::size_t IndexOfHandle(const Export& called)
{
    return called.name == "KORO_DeviceDescriptor_UnregisterInformationChangedCallback" ? 1 : 0;
}

// The name by which messages call the leading handle; one export calls it by another name than its signature.
std::string NameOfHandle(const Export& called)
{
    return called.name == "KORO_Device_GetDataStream" ? "interfaceHandle"
                                                      : called.parameters[IndexOfHandle(called)].name;
}

// One family tests pointers before handles, and has words of its own; its own test tries them.
bool HasWordsOfItsOwn(const Export& called)
{
    return called.name.rfind("KORO_FileAdapter_", 0) == 0;
}

// A buffer with a size pointer behind it may be null: a size query.
bool IsBufferOfSizeQuery(const Export& called, std::size_t index)
{
    const auto& parameters = called.parameters;
    return index + 1 < parameters.size() && parameters[index + 1].type == "size_t*" &&
           parameters[index + 1].name == parameters[index].name + "Size";
}

bool MayBeNull(const Export& called, std::size_t index)
{
    const auto& parameter = called.parameters[index];
    if (parameter.name == "userPtr" && called.name != "KORO_Buffer_GetUserPtr") return true;
    return !(parameter.IsPointer() || parameter.IsCallback()) || parameter.name == "callbackContext" ||
           parameter.name == "revocationCallback" || IsBufferOfSizeQuery(called, index);
}

Error InvalidHandle(const Export& called)
{
    return {KORO_RETURN_CODE_INVALID_HANDLE, NameOfHandle(called) + " is invalid!"};
}

TEST(Sweep, BeforeInitializationEveryExportRefusesWhateverItsArgumentsAre)
{
    const Error refusal{
        KORO_RETURN_CODE_NOT_INITIALIZED,
        "ZVR koro genericAPI library not initialized. Call koro::Library::Initialize() / KORO_Library_Initialize() "
        "before anything else."};
    std::size_t refused = 0;
    for (const auto& called : AllExports())
    {
        if (IsExemptFromInitialization(called)) continue;
        EXPECT_EQ(Outcome(called.call(Words(called.parameters.size()))), refusal) << called.name << " with zeros";
        EXPECT_EQ(Outcome(called.call(Arguments(called).words)), refusal) << called.name;
        ++refused;
    }
    EXPECT_EQ(refused, AllExports().size() - 4);
}

TEST(Sweep, DeadHandleIsReportedByItsParametersNameBeforeAnyPointer)
{
    const KoroLibrary library;
    int nothing = 0;
    for (const auto& called : AllExports())
    {
        if (!BeginsWithHandle(called) || HasWordsOfItsOwn(called)) continue;
        for (const Word dead : {Word{0}, reinterpret_cast<Word>(&nothing), ~Word{0}})
        {
            auto arguments = Arguments(called);
            arguments.words[IndexOfHandle(called)] = dead;
            EXPECT_EQ(Outcome(called.call(arguments.words)), InvalidHandle(called)) << called.name;

            Words zeros(called.parameters.size());
            zeros[IndexOfHandle(called)] = dead;
            EXPECT_EQ(Outcome(called.call(zeros)), InvalidHandle(called)) << called.name << " with null pointers";
        }
    }
}

// An object that was entered as its base as well may have one number for both handles.
bool IsBase(const std::string& base, const std::string& type)
{
    static const std::string node = "NodeHandle";
    if (base == "KORO_NodeHandle") return type.size() > node.size() && type.rfind(node) == type.size() - node.size();
    return base == "KORO_ModuleHandle" && type == "KORO_RemoteDeviceHandle";
}

TEST(Sweep, HandleOfAnotherKindIsInvalid)
{
    ScriptedProducer producer;
    const KoroLibrary library;
    const EveryHandle handles(producer);
    for (const auto& called : AllExports())
    {
        if (!BeginsWithHandle(called) || HasWordsOfItsOwn(called)) continue;
        for (const auto& [type, handle] : handles.byType)
        {
            const auto own = handles.byType.find(called.parameters[IndexOfHandle(called)].type);
            if (handle == own->second || IsBase(own->first, type)) continue;
            auto arguments = Arguments(called, handles.byType);
            arguments.words[IndexOfHandle(called)] = handle;
            EXPECT_EQ(Outcome(called.call(arguments.words)), InvalidHandle(called)) << called.name << " with " << type;
        }
    }
}

TEST(Sweep, NullPointerIsReportedByItsParametersName)
{
    ScriptedProducer producer;
    const EnvironmentVariable search("GENICAM_GENTL64_PATH", producer.Folder().Path().string());
    const KoroLibrary library;
    Require(KORO_EnvironmentInspector_UpdateCTIPaths());
    const EveryHandle handles(producer);
    for (const auto& called : AllExports())
    {
        for (std::size_t index = 0; index < called.parameters.size(); ++index)
        {
            if (MayBeNull(called, index) || HasWordsOfItsOwn(called)) continue;
            auto arguments = Arguments(called, handles.byType);
            arguments.words[index] = 0;
            const auto& name = called.parameters[index].name;
            EXPECT_EQ(
                Outcome(called.call(arguments.words)),
                (Error{KORO_RETURN_CODE_INVALID_ARGUMENT, name + " is not a valid pointer!"}))
                << called.name;
        }
    }
}

// The reader of the last error replaces its own text when it fails, and the producer itself writes the texts of device
// descriptors, by its own rules.
bool HasRulesOfItsOwn(const Export& called)
{
    if (called.name == "KORO_Library_GetLastError") return true;
    return called.name.rfind("KORO_DeviceDescriptor_Get", 0) == 0 && called.name != "KORO_DeviceDescriptor_GetKey" &&
           called.name != "KORO_DeviceDescriptor_GetInfo";
}

TEST(Sweep, BufferThatIsTooSmallIsLeftAsItWasAndSoIsItsSize)
{
    ScriptedProducer producer;
    const EnvironmentVariable search("GENICAM_GENTL64_PATH", producer.Folder().Path().string());
    const KoroLibrary library;
    Require(KORO_EnvironmentInspector_UpdateCTIPaths());
    const EveryHandle handles(producer);
    for (const auto& called : AllExports())
    {
        if (HasRulesOfItsOwn(called)) continue;
        for (std::size_t index = 0; index < called.parameters.size(); ++index)
        {
            if (!IsBufferOfSizeQuery(called, index)) continue;
            const auto& name = called.parameters[index].name;
            auto query = Arguments(called, handles.byType);
            query.words[index] = 0;
            ASSERT_EQ(Outcome(called.call(query.words)), Error{}) << called.name;
            const auto needed = *reinterpret_cast<const std::size_t*>(query.words[index + 1]);
            if (needed == 0) continue; // nothing is too small for it

            auto arguments = Arguments(called, handles.byType);
            auto* const bytes = reinterpret_cast<unsigned char*>(arguments.words[index]);
            auto* const size = reinterpret_cast<std::size_t*>(arguments.words[index + 1]);
            std::memset(bytes, 0x5a, needed);
            *size = needed - 1;
            EXPECT_EQ(
                Outcome(called.call(arguments.words)),
                (Error{KORO_RETURN_CODE_BUFFER_TOO_SMALL, name + " is too small!"}))
                << called.name;
            EXPECT_EQ(*size, needed - 1) << called.name;
            EXPECT_TRUE(std::all_of(bytes, bytes + needed, [](auto byte) { return byte == 0x5a; })) << called.name;

            *size = needed;
            EXPECT_EQ(Outcome(called.call(arguments.words)), Error{}) << called.name;
            EXPECT_EQ(*size, needed) << called.name;
        }
    }
}

} // namespace
