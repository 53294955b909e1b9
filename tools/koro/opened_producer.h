// OpenedProducer: a producer with its system open, and the interfaces below it as they are needed.
//
// Shared by whoever reads its tree and whoever opens a camera of it, so that it is loaded once; the last one closes it,
// leaves first. One thread at a time.
#pragma once

#include "tools/koro/camera_tree.h"
#include "tools/koro/producer_watch.h"
#include <koro/koro.hpp>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace koro::tool
{

// A producer's library. An accident in it, and a call that does not return, is reported with its path.
ProducerLibrary LoadProducer(const std::string& path);

class ListTimes;

class OpenedProducer
{
public:
    // Loads the producer. Throws koro::Error.
    explicit OpenedProducer(const std::string& path);

    // What the producer says of itself.
    ProducerRecord Describe() const;
    // Opens the system; for all that follows. Throws koro::Error.
    void Open();
    // Reads all cameras into the record. With `wanted`, the name of a camera, the lists are asked with short time-outs
    // that grow, until the camera is there. What fails below the system is kept in the record. Throws koro::Error.
    void List(ProducerRecord& record, const std::string& wanted);

    // The camera of that id on that interface, which stays open as the only one: the lists are read until the camera is
    // there. Throws koro::Error, or ToolError when it has gone.
    // `atOpen` gets the interface before its list is read.
    DeviceDescriptor Camera(
        const std::string& interfaceID, const std::string& id,
        const std::function<void(const koro::Interface&)>& atOpen);
    void CloseInterfaces() { interfaces.clear(); }
    const koro::System& System() const { return system; }
    const koro::Interface& Interface(const std::string& id) const { return interfaces.at(id); }

private:
    std::vector<InterfaceRecord> ReadInterfaces(ListTimes& times);
    InterfaceRecord ReadInterface(const InterfaceDescriptor& descriptor, ListTimes& times);
    const koro::Interface& Open(const InterfaceDescriptor& descriptor, const std::string& id);
    std::optional<DeviceDescriptor> FindCamera(
        const std::string& interfaceID, const std::string& id,
        const std::function<void(const koro::Interface&)>& atOpen, ListTimes* times);

    WatchedWork work; // ends when all below is closed
    std::string path;
    Library library;
    ProducerLibrary producer;
    koro::System system;
    std::map<std::string, koro::Interface> interfaces;
    ClosingMark mark; // last
};

} // namespace koro::tool
