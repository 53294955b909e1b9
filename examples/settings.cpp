// Stores the settings of the camera in a file and writes them back. Values that depend on each other are tried again;
// those that still fail are reported with their line.
#include "example.hpp"

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        std::fprintf(stderr, "usage: %s SETTINGS-FILE\n", argv[0]);
        return EXIT_FAILURE;
    }
    return Run([&] {
        const Camera camera = OpenFirstCamera();
        const koro::IntegerNode width = camera.features.Integer("Width");
        camera.features.StoreToFile(argv[1]);
        width.SetValue(width.Value() / 2);
        std::printf("width %lld", static_cast<long long>(width.Value()));
        for (const koro::SettingFailure& left : koro::LoadSettings(camera.features, argv[1]))
            std::fprintf(stderr, "line %zu: %s: %s\n", left.line, left.feature.c_str(), left.reason.c_str());
        std::printf(", loaded %lld\n", static_cast<long long>(width.Value()));
    });
}
