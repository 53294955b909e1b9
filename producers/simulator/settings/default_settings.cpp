// The cameras of docs/simulator.md.
#include "producers/simulator/settings/settings.h"

namespace koro::simulator
{
namespace
{

CameraSettings Camera(
    const char* serial, const char* model, const char* userName, const char* format, std::size_t width,
    std::size_t height, double rate, SourceKind source, DescriptionForm form = DescriptionForm::Plain)
{
    CameraSettings camera;
    camera.serial = serial;
    camera.model = model;
    camera.userName = userName;
    camera.format = FindPixelFormat(format);
    camera.width = width;
    camera.height = height;
    camera.rate = rate;
    camera.source = source;
    camera.descriptionForm = form;
    return camera;
}

CameraSettings WithChunks(CameraSettings camera)
{
    camera.chunks = allChunks;
    return camera;
}

CameraSettings WithScan3d(CameraSettings camera)
{
    camera.scan3d = true;
    return camera;
}

} // namespace

Settings DefaultSettings()
{
    Settings settings;
    settings.interfaces = {
        {"SimGEV",
         "Simulated GigE Vision",
         "GEV",
         {Camera("KS0001", "GevMono", "mono", "Mono8", 640, 480, 50, SourceKind::Pattern),
          Camera(
              "KS0002", "GevBayer", "bayer", "BayerRG12Packed", 640, 480, 25, SourceKind::Pattern,
              DescriptionForm::Zipped),
          WithChunks(Camera("KS0005", "GevChunks", "chunks", "Mono8", 640, 480, 25, SourceKind::Sequence))}},
        {"SimU3V",
         "Simulated USB3 Vision",
         "U3V",
         {Camera("KS0003", "UsbColour", "colour", "RGB8", 640, 480, 25, SourceKind::Pattern, DescriptionForm::TwoURLs),
          Camera("KS0004", "UsbPlayer", "player", "Mono8", 640, 480, 25, SourceKind::Sequence),
          WithScan3d(Camera("KS0006", "UsbDepth", "depth", "Mono8", 320, 240, 10, SourceKind::Surface))}},
        {"SimIIDC",
         "Simulated IIDC",
         "IIDC",
         {WithChunks(Camera("KS0007", "IidcChunks", "checksum", "Mono8", 640, 480, 25, SourceKind::Sequence))}}};
    return settings;
}

} // namespace koro::simulator
