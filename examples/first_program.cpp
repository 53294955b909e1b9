// The first program in C++: takes one frame of the first camera and prints its size. All objects close by themselves.
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
