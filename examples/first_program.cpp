// The first program in C++: one frame of the first camera, and its size. What is open closes by itself.
#include "example.hpp"

int main()
{
    return Run([] {
        const Camera camera = OpenFirstCamera();
        camera.AllocateAndQueue(1);
        koro::Acquisition acquisition(camera.stream, camera.features);
        const koro::Buffer frame = NextFrame(camera);
        std::printf("%zu x %zu pixels\n", frame.Width(), frame.Height());
        acquisition.Stop();
    });
}
