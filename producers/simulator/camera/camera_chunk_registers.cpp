// The registers of a camera that say what it sends behind its images.
#include "producers/simulator/camera/camera_features.h"

namespace koro::simulator
{

void CameraFeatures::AddChunks()
{
    AddNumber(0xC00, &FeatureValues::chunkModeActive, 0, 1, Lock::WithFormat);
    map.AddInteger(0xC08, 8, [this] { return std::uint64_t{state.values.Parts().Bytes()}; });
    map.AddInteger(
        0xC40, 4, [] { return std::uint64_t{1}; },
        [](std::uint64_t wanted) {
            if (wanted != 1) RefuseValue("the image is always sent");
        });
    for (std::uint32_t index = 1; index < numChunks; ++index)
    {
        const ChunkSet bit = ChunkSet{1} << index;
        map.AddInteger(
            0xC40 + 4 * index, 4, [this, bit]() -> std::uint64_t { return (state.values.chunkSet & bit) != 0 ? 1 : 0; },
            [this, bit](std::uint64_t wanted) {
                RequireUnlocked();
                if (wanted > 1) RefuseValue("the value is out of range");
                state.values.chunkSet = wanted == 1 ? state.values.chunkSet | bit : state.values.chunkSet & ~bit;
            });
    }
}

} // namespace koro::simulator
