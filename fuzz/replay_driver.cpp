// Replays a corpus: runs the target once on each file of the given folders, without a fuzzer. An empty corpus is a
// failure, since it would show nothing.
#include "fuzz/fuzz_target.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace
{

std::vector<std::filesystem::path> FilesOf(const char* folder)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
    {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<char> ContentsOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

int main(int argc, char** argv)
{
    std::size_t numInputs = 0;
    for (int index = 1; index < argc; ++index)
    {
        for (const auto& file : FilesOf(argv[index]))
        {
            std::printf("%s\n", file.filename().c_str());
            std::fflush(stdout); // the last name shows the input that failed
            const auto contents = ContentsOf(file);
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(contents.data()), contents.size());
            ++numInputs;
        }
    }
    std::printf("%zu inputs\n", numInputs);
    return numInputs > 0 ? 0 : 1;
}
