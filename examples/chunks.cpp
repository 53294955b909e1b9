// Enables chunks and reads them as features. Chunks make frames larger, so the buffers are announced afterwards. The
// values of chunk nodes are those of the last buffer that was passed to the node map.
#include "example.hpp"

int main()
{
    return Run([] {
        const Camera camera = OpenFirstCamera();
        const koro::NodeMap features = camera.features;
        features.Boolean("ChunkModeActive").SetValue(true);
        for (const std::string chunk : {"FrameID", "ExposureTime"})
        {
            features.Enumeration("ChunkSelector").SetCurrentEntry(chunk);
            features.Boolean("ChunkEnable").SetValue(true);
        }
        camera.AllocateAndQueue(3);

        koro::Acquisition acquisition(camera.stream, features);
        for (int number = 0; number < 3; ++number)
        {
            const koro::Buffer frame = NextFrame(camera);
            features.UpdateChunkNodes(frame);
            std::printf(
                "frame %lld, exposed for %.0f us\n", static_cast<long long>(features.Integer("ChunkFrameID").Value()),
                features.Float("ChunkExposureTime").Value());
            camera.stream.QueueBuffer(frame);
        }
        acquisition.Stop();
    });
}
