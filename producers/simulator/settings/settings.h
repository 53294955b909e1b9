// Settings: what the JSON file says, checked. Without a file: the cameras of docs/simulator.md.
#pragma once

#include "producers/simulator/frames/chunks.h"
#include "producers/simulator/frames/pixel_format.h"
#include "producers/simulator/settings/connection_settings.h"
#include "producers/simulator/settings/fault_plan.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace koro::simulator
{

enum class SourceKind
{
    Pattern,
    Sequence,
    Folder,
    Surface
};

// How a camera serves its description.
enum class DescriptionForm
{
    Plain,
    Zipped,
    TwoURLs // in the registers, and as a file beside the producer
};

// How long a camera is gone, and how it comes back.
struct Absence
{
    std::uint64_t missingUpdates = 0; // so many list updates do not find it
    std::uint64_t time_ms = 0;        // nor do those before
    bool returns = true;
    bool changesId = false;

    bool IsOne() const noexcept { return missingUpdates > 0 || time_ms > 0 || !returns || changesId; }
};

// What the local device says of repeated commands.
struct CommandRetries
{
    std::uint64_t number = 3;
    std::uint64_t maximum = 100;
    bool isImplemented = true;
    bool isReadOnly = false;
};

struct CameraSettings
{
    std::string serial;
    std::string vendor = "zvr";
    std::string model = "SimulatedCamera";
    std::string userName; // empty: has none
    std::size_t width = 640;
    std::size_t height = 480;
    const PixelFormat* format = FindPixelFormat("Mono8");
    double rate = 25; // frames per second; 0 unpaced
    SourceKind source = SourceKind::Pattern;
    std::filesystem::path folder; // for SourceKind::Folder

    std::optional<ChunkSet> chunks; // enabled from the start, with the mode; nothing: the mode is off
    bool chunkChecksum = true;      // of IIDC cameras
    bool scan3d = false;            // sends parts: the image, ranges and confidences

    bool extendedEventIds = false; // of frames in event packets of GigE Vision: 64 bits
    std::size_t eventsPerPacket = 1;
    bool startWithStream = false; // true: need no AcquisitionStart
    DescriptionForm descriptionForm = DescriptionForm::Plain;
    std::filesystem::path description;     // somebody else's, over a memory without meaning; empty: the camera's own
    std::size_t longestCommand = 1024;     // bytes, GevGVCPCMDLength
    std::size_t longestPassingCommand = 0; // bytes that the path to the test memory lets pass; 0: all
    std::string firmwareVersion = "1.0.0"; // until a new one is installed
    Absence reset;
    CommandRetries retries;
    std::size_t fileBufferBytes = 65536;  // one file operation moves at most
    std::size_t userFileBytes = 33554432; // room in a file of the user's
    bool memoryCard = false;              // is plugged in
    std::filesystem::path memory;         // folder of what all processes see of its features; empty: each its own
};

struct InterfaceSettings
{
    std::string id;
    std::string displayName;
    std::string tlType;
    std::vector<CameraSettings> cameras;
};

struct Settings
{
    std::uint32_t versionMajor = 1;
    std::uint32_t versionMinor = 5;
    bool strictInit = false; // a second GCInitLib fails instead of being counted
    std::vector<InterfaceSettings> interfaces;
    Misbehaviour misbehaviour;
    ConnectionSettings connection;
};

inline constexpr std::size_t maxPayloadBytes = std::size_t{1} << 28; // of one image

Settings DefaultSettings();

// Throws Failure (GC_ERR_ERROR) whose text says what is wrong and where in the document. The memory is looked for from
// `base` on.
Settings ParseSettings(std::string_view json, const std::filesystem::path& base = {});

// The file that KORO_SIMULATOR_CONFIG names, the defaults when it names none. Failures name the file.
Settings LoadSettings();

} // namespace koro::simulator
