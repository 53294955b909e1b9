// PluggedCameras: a tree with its connection event, and the features that pull cables.
//
// Owned by one test.
#pragma once

#include "tests/unit/simulator/feature_map.h"

#include <cstring>
#include <optional>

namespace koro::simulator::test
{

// Two interfaces, "I" with the camera A, "J" with B.
inline std::string PluggedSettings(const std::string& connection = "")
{
    const std::string size = R"("width": 16, "height": 4, "rate": 0)";
    return R"({"interfaces": [{"id": "I", "tlType": "GEV", "cameras": [{"serial": "A", "startWithStream": true, )" +
           size + R"(}]}, {"id": "J", "tlType": "U3V", "cameras": [{"serial": "B", )" + size +
           R"(}]}], "connection": {)" + connection + "}}";
}

// As the consumer reads the record.
struct ReceivedRecord
{
    std::string block;

    template <typename T>
    T At(std::size_t offset) const
    {
        T value;
        std::memcpy(&value, block.substr(offset, sizeof value).data(), sizeof value);
        return value;
    }
    void* Interface() const { return At<void*>(0); }
    std::string DeviceId() const { return block.substr(16, 256).c_str(); }
    int ChangeKind() const { return At<std::uint16_t>(272); }
    int DeviceFlag() const { return At<std::uint8_t>(274); }
    int ReconnectFlag1() const { return At<std::uint8_t>(275); }
    int ReconnectFlag2() const { return At<std::uint8_t>(276); }
    std::uint32_t ReconnectValue() const { return At<std::uint32_t>(283); }
};

class PluggedCameras
{
public:
    explicit PluggedCameras(const std::string& settings = PluggedSettings()) : producer(settings)
    {
        if (producer.GCRegisterEvent(tree.system, EVENT_CUSTOM_ID, &records) != GC_ERR_SUCCESS)
            throw std::runtime_error(producer.Last().text);
    }

    // Waits up to a minute when `waits`; nothing when none is there.
    std::optional<ReceivedRecord> TakeRecord(bool waits = false) const
    {
        std::vector<char> block(4096);
        std::size_t size = block.size();
        const GC_ERROR result = producer.EventGetData(records, block.data(), &size, waits ? 60000 : 0);
        if (result != GC_ERR_SUCCESS) return std::nullopt;
        return ReceivedRecord{{block.data(), size}};
    }
    void Unplug(int index = 0) const { Do(index, "SimulatedCameraUnplug"); }
    void Replug(int index = 0) const { Do(index, "SimulatedCameraReplug"); }
    bool IsListed(IF_HANDLE interface) const
    {
        if (producer.IFUpdateDeviceList(interface, nullptr, 0) != GC_ERR_SUCCESS)
            throw std::runtime_error(producer.Last().text);
        std::uint32_t number = 0;
        producer.IFGetNumDevices(interface, &number);
        return number == 1;
    }
    GC_ERROR ReadWidth() const
    {
        std::uint32_t width = 0;
        std::size_t size = sizeof width;
        return producer.GCReadPort(tree.remote, 0x300, &width, &size);
    }

    const Producer producer;
    const Tree tree{producer};
    const FeatureMap system{producer, tree.system};
    EVENT_HANDLE records = nullptr;

private:
    void Do(int index, const char* command) const
    {
        system.Set("SimulatedCameraSelector", std::to_string(index));
        system.Execute(command);
    }
};

} // namespace koro::simulator::test
