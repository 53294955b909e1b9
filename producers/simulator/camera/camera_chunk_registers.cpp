// The registers of a camera that say what it sends behind its images.
#include "producers/simulator/camera/register_settings.h"

namespace koro::simulator
{

void CameraFeatures::AddChunks()
{
    AddNumber(registers::ChunkModeActiveReg, &FeatureValues::chunkModeActive);
    map.AddInteger(registers::ImageBytesReg, [this] { return std::uint64_t{state.values.Parts().Bytes()}; });
    map.AddInteger(
        registers::ChunkEnableReg, [] { return std::uint64_t{1}; },
        [](std::uint64_t wanted) {
            if (wanted != 1) RefuseValue("the image is always sent");
        });
    for (std::uint32_t index = 1; index < numChunks; ++index)
    {
        const ChunkSet bit = ChunkSet{1} << index;
        map.AddInteger(
            registers::ChunkEnableReg.At(index),
            [this, bit]() -> std::uint64_t { return (state.values.chunkSet & bit) != 0 ? 1 : 0; },
            [this, bit](std::uint64_t wanted) {
                RequireUnlocked();
                RequireAllowed(registers::ChunkEnableReg, wanted);
                state.values.chunkSet = wanted == 1 ? state.values.chunkSet | bit : state.values.chunkSet & ~bit;
            });
    }
}

} // namespace koro::simulator
