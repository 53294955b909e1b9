// The tree that a producer offers, as plain values: what `koro list` shows and cameras are chosen from.
//
// Every text but the ids may be missing: producers need not know it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace koro::tool
{

using OptionalText = std::optional<std::string>;

struct CameraRecord
{
    std::string id;
    OptionalText displayName;
    OptionalText vendor;
    OptionalText model;
    OptionalText version;
    OptionalText serialNumber;
    OptionalText userName;
    OptionalText tlType;
    OptionalText ipAddress; // these two only where they were asked for and the interface knows them
    OptionalText macAddress;
    std::optional<int32_t> accessStatus; // DEVICE_ACCESS_STATUS

    // Nothing speaks against opening it: readable and writable, or the producer does not tell.
    bool LooksUsable() const;
};

struct InterfaceRecord
{
    std::string id;
    OptionalText displayName;
    OptionalText tlType;
    OptionalText problem; // the library's text when the cameras could not be listed
    std::vector<CameraRecord> cameras;
};

struct ProducerRecord
{
    std::string path;
    OptionalText id;
    OptionalText displayName;
    OptionalText vendor;
    OptionalText model;
    OptionalText version;
    OptionalText tlType;
    OptionalText genTLVersion; // "1.5"
    OptionalText problem;      // the library's text when the interfaces could not be listed
    std::vector<InterfaceRecord> interfaces;

    size_t NumUsableCameras() const;
};

// "ReadWrite", "Busy", ...; the number for a status of the producer's own.
std::string AccessStatusName(int32_t status);

} // namespace koro::tool
