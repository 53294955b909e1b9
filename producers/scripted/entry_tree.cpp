// Entry points of the module tree, from the system down to the device.
#define GENTL_PRODUCER
#include "producers/scripted/call.h"

#include <algorithm>

using namespace GenTL;
using namespace scripted;

namespace
{

template <class Node>
std::shared_ptr<Node> FindNode(const std::vector<std::shared_ptr<Node>>& nodes, const char* id)
{
    const auto found = std::find_if(nodes.begin(), nodes.end(), [&](const auto& node) { return node->id == id; });
    return found == nodes.end() ? nullptr : *found;
}

template <class Node>
const std::string* IDAt(const std::vector<std::shared_ptr<Node>>& nodes, std::uint32_t index)
{
    return index < nodes.size() ? &nodes[index]->id : nullptr;
}

// Takes the new snapshot; a null `changed` is allowed and stays unwritten.
template <class Node>
GC_ERROR UpdateList(
    const State& state, const char* function, std::vector<std::shared_ptr<Node>>& listed,
    const std::vector<std::shared_ptr<Node>>& present, bool8_t* changed)
{
    const bool differs = listed != present;
    listed = present;
    const auto set = state.answers.changed.find(function);
    const auto answer = set == state.answers.changed.end() ? std::optional<bool8_t>(differs) : set->second;
    if (changed && answer) *changed = *answer;
    return GC_ERR_SUCCESS;
}

// Opens `node` as the one module of its kind below `parent`.
template <class Node>
GC_ERROR Open(
    Live& live, Kind kind, const Module& parent, const std::shared_ptr<Node>& node,
    std::shared_ptr<Node> Module::*field, Handle* output)
{
    if (!node) return GC_ERR_INVALID_ID;
    if (live.FindOpen(kind, node.get())) return GC_ERR_RESOURCE_IN_USE;
    Module& module = live.Add(kind, node->id, parent.handle);
    module.interface = parent.interface;
    module.device = parent.device;
    module.*field = node;
    *output = module.handle;
    return GC_ERR_SUCCESS;
}

GC_ERROR Close(State& state, Module& module)
{
    state.live.Close(module.handle);
    state.happened.notify_all();
    return GC_ERR_SUCCESS;
}

GC_ERROR AnswerParent(const Module& module, Handle* output)
{
    if (!output) return GC_ERR_INVALID_PARAMETER;
    *output = module.parent;
    return GC_ERR_SUCCESS;
}

} // namespace

GC_ERROR GenTL::TLOpen(TL_HANDLE* phSystem)
{
    return Call("TLOpen", [&](State& state, Lock&) -> GC_ERROR {
        if (!phSystem) return GC_ERR_INVALID_PARAMETER;
        if (state.live.FindOpen(Kind::System, nullptr)) return GC_ERR_RESOURCE_IN_USE;
        *phSystem = state.live.Add(Kind::System, state.live.tree.id, nullptr).handle;
        return GC_ERR_SUCCESS;
    });
}

GC_ERROR GenTL::TLClose(TL_HANDLE hSystem)
{
    return CallOn(Kind::System, "TLClose", hSystem, Close);
}

GC_ERROR GenTL::TLUpdateInterfaceList(TL_HANDLE hSystem, bool8_t* pbChanged, uint64_t iTimeout)
{
    return CallOn(
        Kind::System, "TLUpdateInterfaceList", hSystem,
        [&](State& state, Module& system) -> GC_ERROR {
            return UpdateList(
                state, "TLUpdateInterfaceList", system.listedInterfaces, state.live.tree.interfaces, pbChanged);
        },
        iTimeout);
}

GC_ERROR GenTL::TLGetNumInterfaces(TL_HANDLE hSystem, uint32_t* piNumIfaces)
{
    return CallOn(Kind::System, "TLGetNumInterfaces", hSystem, [&](State& state, Module& system) -> GC_ERROR {
        return AnswerCount(state, "TLGetNumInterfaces", system.listedInterfaces.size(), piNumIfaces);
    });
}

GC_ERROR GenTL::TLGetInterfaceID(TL_HANDLE hSystem, uint32_t iIndex, char* sIfaceID, size_t* piSize)
{
    return CallOn(
        Kind::System, "TLGetInterfaceID", hSystem,
        [&](State& state, Module& system) -> GC_ERROR {
            return AnswerID(state, "TLGetInterfaceID", iIndex, IDAt(system.listedInterfaces, iIndex), sIfaceID, piSize);
        },
        iIndex, Half{sIfaceID});
}

GC_ERROR GenTL::TLGetInterfaceInfo(
    TL_HANDLE hSystem, const char* sIfaceID, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
    size_t* piSize)
{
    return CallOn(
        Kind::System, "TLGetInterfaceInfo", hSystem,
        [&](State& state, Module&) -> GC_ERROR {
            if (!sIfaceID) return GC_ERR_INVALID_PARAMETER;
            const auto interface = FindNode(state.live.tree.interfaces, sIfaceID);
            if (!interface) return GC_ERR_INVALID_ID;
            return AnswerInfo(Choose(state, "TLGetInterfaceInfo", interface->info, iInfoCmd), piType, pBuffer, piSize);
        },
        sIfaceID, iInfoCmd, Half{pBuffer});
}

GC_ERROR GenTL::TLOpenInterface(TL_HANDLE hSystem, const char* sIfaceID, IF_HANDLE* phIface)
{
    return CallOn(
        Kind::System, "TLOpenInterface", hSystem,
        [&](State& state, Module& system) -> GC_ERROR {
            if (!sIfaceID || !phIface) return GC_ERR_INVALID_PARAMETER;
            const auto interface = FindNode(state.live.tree.interfaces, sIfaceID);
            return Open(state.live, Kind::Interface, system, interface, &Module::interface, phIface);
        },
        sIfaceID);
}

GC_ERROR GenTL::IFClose(IF_HANDLE hIface)
{
    return CallOn(Kind::Interface, "IFClose", hIface, Close);
}

GC_ERROR GenTL::IFGetParentTL(IF_HANDLE hIface, TL_HANDLE* phSystem)
{
    return CallOn(Kind::Interface, "IFGetParentTL", hIface, [&](State&, Module& module) {
        return AnswerParent(module, phSystem);
    });
}

GC_ERROR GenTL::IFGetInfo(
    IF_HANDLE hIface, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return CallOn(
        Kind::Interface, "IFGetInfo", hIface,
        [&](State& state, Module& module) -> GC_ERROR {
            return AnswerInfo(Choose(state, "IFGetInfo", module.interface->info, iInfoCmd), piType, pBuffer, piSize);
        },
        iInfoCmd, Half{pBuffer});
}

GC_ERROR GenTL::IFUpdateDeviceList(IF_HANDLE hIface, bool8_t* pbChanged, uint64_t iTimeout)
{
    return CallOn(
        Kind::Interface, "IFUpdateDeviceList", hIface,
        [&](State& state, Module& module) -> GC_ERROR {
            return UpdateList(state, "IFUpdateDeviceList", module.listedDevices, module.interface->devices, pbChanged);
        },
        iTimeout);
}

GC_ERROR GenTL::IFGetNumDevices(IF_HANDLE hIface, uint32_t* piNumDevices)
{
    return CallOn(Kind::Interface, "IFGetNumDevices", hIface, [&](State& state, Module& module) -> GC_ERROR {
        return AnswerCount(state, "IFGetNumDevices", module.listedDevices.size(), piNumDevices);
    });
}

GC_ERROR GenTL::IFGetDeviceID(IF_HANDLE hIface, uint32_t iIndex, char* sDeviceID, size_t* piSize)
{
    return CallOn(
        Kind::Interface, "IFGetDeviceID", hIface,
        [&](State& state, Module& module) -> GC_ERROR {
            return AnswerID(state, "IFGetDeviceID", iIndex, IDAt(module.listedDevices, iIndex), sDeviceID, piSize);
        },
        iIndex, Half{sDeviceID});
}

GC_ERROR GenTL::IFGetDeviceInfo(
    IF_HANDLE hIface, const char* sDeviceID, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
    size_t* piSize)
{
    return CallOn(
        Kind::Interface, "IFGetDeviceInfo", hIface,
        [&](State& state, Module& module) -> GC_ERROR {
            if (!sDeviceID) return GC_ERR_INVALID_PARAMETER;
            const auto device = FindNode(module.interface->devices, sDeviceID);
            if (!device) return GC_ERR_INVALID_ID;
            return AnswerInfo(Choose(state, "IFGetDeviceInfo", device->info, iInfoCmd), piType, pBuffer, piSize);
        },
        sDeviceID, iInfoCmd, Half{pBuffer});
}

GC_ERROR GenTL::IFOpenDevice(
    IF_HANDLE hIface, const char* sDeviceID, DEVICE_ACCESS_FLAGS iOpenFlag, DEV_HANDLE* phDevice)
{
    return CallOn(
        Kind::Interface, "IFOpenDevice", hIface,
        [&](State& state, Module& module) -> GC_ERROR {
            if (!sDeviceID || !phDevice) return GC_ERR_INVALID_PARAMETER;
            const auto device = FindNode(module.interface->devices, sDeviceID);
            return Open(state.live, Kind::Device, module, device, &Module::device, phDevice);
        },
        sDeviceID, iOpenFlag);
}

GC_ERROR GenTL::DevClose(DEV_HANDLE hDevice)
{
    return CallOn(Kind::Device, "DevClose", hDevice, Close);
}

GC_ERROR GenTL::DevGetParentIF(DEV_HANDLE hDevice, IF_HANDLE* phIface)
{
    return CallOn(
        Kind::Device, "DevGetParentIF", hDevice, [&](State&, Module& module) { return AnswerParent(module, phIface); });
}

GC_ERROR GenTL::DevGetInfo(
    DEV_HANDLE hDevice, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return CallOn(
        Kind::Device, "DevGetInfo", hDevice,
        [&](State& state, Module& module) -> GC_ERROR {
            return AnswerInfo(Choose(state, "DevGetInfo", module.device->info, iInfoCmd), piType, pBuffer, piSize);
        },
        iInfoCmd, Half{pBuffer});
}

GC_ERROR GenTL::DevGetPort(DEV_HANDLE hDevice, PORT_HANDLE* phRemoteDev)
{
    return CallOn(Kind::Device, "DevGetPort", hDevice, [&](State& state, Module& module) -> GC_ERROR {
        if (!phRemoteDev) return GC_ERR_INVALID_PARAMETER;
        Module* remote = state.live.FindOpen(Kind::RemotePort, module.device.get());
        if (!remote)
        {
            remote = &state.live.Add(Kind::RemotePort, module.id + "-remote", module.handle);
            remote->device = module.device;
        }
        *phRemoteDev = remote->handle;
        return GC_ERR_SUCCESS;
    });
}

GC_ERROR GenTL::DevGetNumDataStreams(DEV_HANDLE hDevice, uint32_t* piNumDataStreams)
{
    return CallOn(Kind::Device, "DevGetNumDataStreams", hDevice, [&](State& state, Module& module) -> GC_ERROR {
        return AnswerCount(state, "DevGetNumDataStreams", module.device->streams.size(), piNumDataStreams);
    });
}

GC_ERROR GenTL::DevGetDataStreamID(DEV_HANDLE hDevice, uint32_t iIndex, char* sDataStreamID, size_t* piSize)
{
    return CallOn(
        Kind::Device, "DevGetDataStreamID", hDevice,
        [&](State& state, Module& module) -> GC_ERROR {
            return AnswerID(
                state, "DevGetDataStreamID", iIndex, IDAt(module.device->streams, iIndex), sDataStreamID, piSize);
        },
        iIndex, Half{sDataStreamID});
}

GC_ERROR GenTL::DevOpenDataStream(DEV_HANDLE hDevice, const char* sDataStreamID, DS_HANDLE* phDataStream)
{
    return CallOn(
        Kind::Device, "DevOpenDataStream", hDevice,
        [&](State& state, Module& module) -> GC_ERROR {
            if (!sDataStreamID || !phDataStream) return GC_ERR_INVALID_PARAMETER;
            const auto stream = FindNode(module.device->streams, sDataStreamID);
            return Open(state.live, Kind::Stream, module, stream, &Module::stream, phDataStream);
        },
        sDataStreamID);
}
