// Several adapters for the files of one device, each in its thread.
#include "tests/unit/genicam/file_device.h"

#include <GenApi/Filestream.h>
#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <thread>

namespace
{

using namespace GENAPI_NAMESPACE;
using koro::test::FileMap;

// All registers of the transfer are the device's one and only.
TEST(FileThreads, TransfersDoNotMix)
{
    FileMap map;
    FileProtocolAdapter opener;
    ASSERT_TRUE(opener.attach(map.map));
    ASSERT_TRUE(opener.openFile("User", std::ios_base::in));
    const std::string content = map.device.content;
    // Between the offset and its block, another thread goes on if nothing holds it back.
    Register(
        map.map->GetNode("FileAccessOffset"), std::function<void(INode*)>([](INode*) { std::this_thread::yield(); }));
    std::atomic<int> wrong{0};
    const auto read = [&](size_t offset) {
        FileProtocolAdapter adapter;
        adapter.attach(map.map);
        for (int i = 0; i < 100; ++i)
        {
            char bytes[10] = {};
            const int64_t got = adapter.read(bytes, static_cast<int64_t>(offset), sizeof bytes, "User");
            if (std::string(bytes, static_cast<size_t>(got)) != content.substr(offset, sizeof bytes)) ++wrong;
        }
    };
    std::thread first(read, 0), second(read, 10);
    first.join();
    second.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
