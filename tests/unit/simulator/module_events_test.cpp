// Events of the local modules: test events, errors, and notifications of devices about their features.
#include "tests/unit/simulator/feature_map.h"

#include <GenApi/EventAdapterCL.h>
#include <GenApi/EventAdapterGEV.h>
#include <GenApi/EventAdapterGeneric.h>
#include <GenApi/EventAdapterU3V.h>
#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

namespace GenApi = GENAPI_NAMESPACE;

std::string CameraOf(const std::string& tlType, const std::string& extra = "")
{
    return R"({"interfaces": [{"id": "I", "tlType": ")" + tlType +
           R"(", "cameras": [{"serial": "A", "width": 16, "height": 4, "rate": 0}]}])" + extra + "}";
}

class OpenModules
{
public:
    explicit OpenModules(const std::string& settings = CameraOf("GEV")) : producer(settings) {}

    EVENT_HANDLE Register(void* module, EVENT_TYPE type) const
    {
        EVENT_HANDLE event = nullptr;
        EXPECT_EQ(producer.GCRegisterEvent(module, type, &event), GC_ERR_SUCCESS);
        return event;
    }
    // An empty one when none is there.
    std::string Take(EVENT_HANDLE event) const
    {
        std::string block(1024, '\0');
        std::size_t size = block.size();
        if (producer.EventGetData(event, block.data(), &size, 0) != GC_ERR_SUCCESS) return {};
        block.resize(size);
        return block;
    }
    void Send(const char* module, const char* type) const
    {
        system.Set("SimulatedEventModule", module);
        system.Set("SimulatedEventType", type);
        system.Execute("SimulatedEventSend");
    }

    const Producer producer;
    const Tree tree{producer};
    const FeatureMap system{producer, tree.system};
};

template <typename Adapter>
void CheckTestEvent(const OpenModules& modules, void* module)
{
    const FeatureMap map(modules.producer, module);
    SCOPED_TRACE(modules.producer.Get(modules.producer.GCGetPortInfo, module, PORT_INFO_MODULE));
    const EVENT_HANDLE event = modules.Register(module, EVENT_MODULE);
    Adapter adapter(&map.Map());
    EXPECT_EQ(map.Access("EventTest"), GenApi::NA) << "none came yet";
    map.Execute("TestEventGenerate");
    const std::string packet = modules.Take(event);
    ASSERT_FALSE(packet.empty());
    adapter.DeliverMessage(
        reinterpret_cast<const std::uint8_t*>(packet.data()), static_cast<std::uint32_t>(packet.size()));
    EXPECT_EQ(map.Text("EventTest"), "0x4fff");
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    EXPECT_GT(map.Integer("EventTestTimestamp").GetValue(), 0);
    EXPECT_LE(
        map.Integer("EventTestTimestamp").GetValue(),
        std::chrono::duration_cast<std::chrono::nanoseconds>(now).count());
    EXPECT_EQ(
        modules.producer.Get(modules.producer.EventGetDataInfo, event, packet.data(), packet.size(), EVENT_DATA_ID),
        "4FFF");
    EXPECT_EQ(
        modules.producer.Result(modules.producer.EventGetDataInfo, event, packet.data(), std::size_t{5}, EVENT_DATA_ID),
        GC_ERR_INVALID_PARAMETER);
    map.Set("EventNotification", "Off");
    map.Execute("TestEventGenerate");
    EXPECT_EQ(modules.Take(event), "");
}

template <typename Adapter>
void CheckTestEvents(const std::string& tlType)
{
    SCOPED_TRACE(tlType);
    const OpenModules modules(CameraOf(tlType));
    for (void* const module : {modules.tree.system, modules.tree.interface, modules.tree.device, modules.tree.stream})
        CheckTestEvent<Adapter>(modules, module);
}

TEST(SimulatorModuleEvents, EachModuleSendsATestEventInThePacketOfItsTransport)
{
    CheckTestEvents<GenApi::CEventAdapterGEV>("GEV");
    CheckTestEvents<GenApi::CEventAdapterU3V>("U3V");
    CheckTestEvents<GenApi::CEventAdapterCL>("CL");
}

TEST(SimulatorModuleEvents, ModuleOfAnotherTransportSendsTheItemAlone)
{
    const Producer producer;
    TL_HANDLE handle = nullptr;
    ASSERT_EQ(producer.TLOpen(&handle), GC_ERR_SUCCESS);
    const FeatureMap map(producer, handle);
    ASSERT_EQ(map.Text("TLType"), "Mixed");
    EVENT_HANDLE event = nullptr;
    ASSERT_EQ(producer.GCRegisterEvent(handle, EVENT_MODULE, &event), GC_ERR_SUCCESS);
    map.Execute("TestEventGenerate");
    std::uint8_t item[576];
    std::size_t size = sizeof item;
    ASSERT_EQ(producer.EventGetData(event, item, &size, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(size, 20U);
    GenApi::CEventAdapterGeneric adapter(&map.Map());
    adapter.DeliverMessage(item, static_cast<std::uint32_t>(size), std::uint64_t{0x4FFF});
    EXPECT_EQ(map.Text("EventTest"), "0x4fff");
}

TEST(SimulatorModuleEvents, FeaturesLetEachModuleReportAnError)
{
    const OpenModules modules;
    const std::pair<const char*, void*> all[] = {
        {"System", modules.tree.system},
        {"Interface", modules.tree.interface},
        {"Device", modules.tree.device},
        {"Stream", modules.tree.stream}};
    modules.system.Set("SimulatedEventErrorCode", "-1022");
    modules.system.Set("SimulatedEventErrorText", "too warm");
    for (const auto& [name, module] : all)
    {
        SCOPED_TRACE(name);
        const EVENT_HANDLE event = modules.Register(module, EVENT_ERROR);
        modules.Send(name, "Error");
        const std::string block = modules.Take(event);
        const Producer& producer = modules.producer;
        EXPECT_EQ(
            producer.Get<std::int32_t>(producer.EventGetDataInfo, event, block.data(), block.size(), EVENT_DATA_ID),
            GC_ERR_BUSY);
        EXPECT_EQ(
            producer.Get(producer.EventGetDataInfo, event, block.data(), block.size(), EVENT_DATA_VALUE), "too warm");
    }
}

TEST(SimulatorModuleEvents, FeaturesLetEachModuleSendItsTestEvent)
{
    const OpenModules modules;
    const EVENT_HANDLE event = modules.Register(modules.tree.stream, EVENT_MODULE);
    modules.Send("Stream", "Module");
    EXPECT_EQ(modules.Take(event).size(), 24U);
}

TEST(SimulatorModuleEvents, FeaturesLetTheDeviceTellOfFeatures)
{
    const OpenModules modules;
    const EVENT_HANDLE invalidated = modules.Register(modules.tree.device, EVENT_FEATURE_INVALIDATE);
    const EVENT_HANDLE changed = modules.Register(modules.tree.device, EVENT_FEATURE_CHANGE);
    modules.system.Set("SimulatedEventFeature", "Width");
    modules.system.Set("SimulatedEventValue", "12");
    modules.Send("Device", "FeatureInvalidate");
    modules.Send("Device", "FeatureChange");
    EXPECT_EQ(modules.Take(invalidated), std::string("Width\0", 6));
    EXPECT_EQ(
        modules.Take(changed), std::string(
                                   "Width\0"
                                   "12\0",
                                   9));
}

TEST(SimulatorModuleEvents, FeaturesRefuseWhatNoModuleCanSend)
{
    const OpenModules modules;
    const auto send = [&] {
        const std::uint32_t one = 1;
        std::size_t size = sizeof one;
        return modules.producer.GCWritePort(modules.tree.system, 0x64C, &one, &size);
    };
    modules.system.Set("SimulatedEventModule", "Stream");
    modules.system.Set("SimulatedEventType", "FeatureChange");
    EXPECT_EQ(send(), GC_ERR_INVALID_PARAMETER);
    ASSERT_EQ(modules.producer.DevClose(modules.tree.device), GC_ERR_SUCCESS);
    modules.system.Set("SimulatedEventType", "Error");
    EXPECT_EQ(send(), GC_ERR_NOT_AVAILABLE);
    EXPECT_EQ(modules.producer.Last().text, "GCWritePort: the module is not open");
    for (const std::uint64_t address : {std::uint64_t{0x640}, std::uint64_t{0x644}})
    {
        const std::uint32_t four = 4;
        std::size_t size = sizeof four;
        EXPECT_EQ(modules.producer.GCWritePort(modules.tree.system, address, &four, &size), GC_ERR_INVALID_VALUE);
    }
}

TEST(SimulatorModuleEvents, StreamTellsWhenToLockTheFormat)
{
    const OpenModules modules;
    const EVENT_HANDLE changed = modules.Register(modules.tree.device, EVENT_FEATURE_CHANGE);
    modules.tree.Announce();
    modules.tree.Start();
    EXPECT_EQ(
        modules.Take(changed), std::string(
                                   "TLParamsLocked\0"
                                   "1\0",
                                   17));
    ASSERT_EQ(modules.producer.DSStopAcquisition(modules.tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_EQ(
        modules.Take(changed), std::string(
                                   "TLParamsLocked\0"
                                   "0\0",
                                   17));
    EXPECT_EQ(modules.Take(changed), "");
}

TEST(SimulatorModuleEvents, ScriptSendsThem)
{
    const OpenModules modules(CameraOf("GEV", R"(, "connection": {"stepwise": true, "script": [
        {"do": "send", "camera": "A", "event": "featureChange", "feature": "Gain", "value": "3"},
        {"do": "send", "camera": "A", "module": "interface", "event": "error", "code": "GC_ERR_IO", "text": "cut"},
        {"do": "send", "camera": "A", "module": "system", "event": "module"},
        {"do": "send", "camera": "A", "module": "stream", "event": "error"}]})"));
    const EVENT_HANDLE changed = modules.Register(modules.tree.device, EVENT_FEATURE_CHANGE);
    const EVENT_HANDLE failed = modules.Register(modules.tree.interface, EVENT_ERROR);
    const EVENT_HANDLE told = modules.Register(modules.tree.system, EVENT_MODULE);
    ASSERT_EQ(modules.producer.DSClose(modules.tree.stream), GC_ERR_SUCCESS);
    for (int step = 0; step < 4; ++step)
        modules.system.Execute("SimulatedScriptStep");
    EXPECT_EQ(
        modules.Take(changed), std::string(
                                   "Gain\0"
                                   "3\0",
                                   7));
    EXPECT_EQ(
        modules.Take(failed), std::string(
                                  "\x0E\xFC\xFF\xFF"
                                  "cut\0",
                                  8));
    EXPECT_EQ(modules.Take(told).size(), 24U);
}

} // namespace
} // namespace koro::simulator::test
