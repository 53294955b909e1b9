#include "tests/unit/genicam/file_device.h"

#include <GenApi/Filestream.h>
#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::FileDevice;
using koro::test::FileMap;
using koro::test::FileNodes;

TEST(DeviceFileStreams, ReadAFileToItsEnd)
{
    FileMap map;
    IDevFileStream stream(map.map, "User");
    ASSERT_TRUE(stream.is_open());
    std::string text;
    EXPECT_TRUE(stream >> text);
    EXPECT_EQ(text, "0123456789abcdefghij");
    EXPECT_TRUE(stream.eof());
    EXPECT_FALSE(stream.bad());
    stream.clear();
    stream.close();
    EXPECT_TRUE(stream.good());
    EXPECT_FALSE(map.device.open);
    stream.close();
    EXPECT_TRUE(stream.fail()) << "it is closed already";
}

TEST(DeviceFileStreams, WriteAFile)
{
    FileMap map;
    map.device.content.clear();
    ODevFileStream stream(map.map, "User");
    stream << "one " << 2 << " three and more than a block";
    stream.flush();
    EXPECT_EQ(map.device.content, "one 2 three and more than a block");
    stream << "!";
    stream.close();
    EXPECT_TRUE(stream.good());
    EXPECT_EQ(map.device.content, "one 2 three and more than a block!");
    EXPECT_FALSE(map.device.open);
}

TEST(DeviceFileStreams, DestructionWritesAndCloses)
{
    FileMap map;
    map.device.content.clear();
    {
        ODevFileStream stream(map.map, "User");
        stream << "abc";
        EXPECT_EQ(map.device.content, "");
    }
    EXPECT_EQ(map.device.content, "abc");
    EXPECT_FALSE(map.device.open);
    {
        IDevFileStream stream(map.map, "User");
        EXPECT_TRUE(map.device.open);
    }
    EXPECT_FALSE(map.device.open);
}

TEST(DeviceFileStreams, FilesThatCannotBeOpenedFailTheStream)
{
    FileMap map;
    EXPECT_TRUE(IDevFileStream(map.map, "Nothing").fail());
    EXPECT_TRUE(ODevFileStream(map.map, "Nothing").fail());
    EXPECT_TRUE(IDevFileStream(map.map, nullptr).fail());
    EXPECT_TRUE(IDevFileStream(nullptr, "User").fail());
    map.device.refused = {"Open"};
    EXPECT_TRUE(IDevFileStream(map.map, "User").fail());
    EXPECT_TRUE(ODevFileStream(map.map, "User").fail());
    IDevFileStream closed;
    EXPECT_FALSE(closed.is_open());
    EXPECT_EQ(closed.get(), std::char_traits<char>::eof());
    ODevFileStream alsoClosed;
    alsoClosed << "x";
    EXPECT_TRUE(alsoClosed.bad());
}

TEST(DeviceFileStreams, OpenAgainAfterACloseAndNotBefore)
{
    FileMap map;
    IDevFileStream stream(map.map, "User");
    stream.open(map.map, "User");
    EXPECT_TRUE(stream.fail());
    EXPECT_TRUE(stream.is_open());
    stream.close();
    stream.open(map.map, "User");
    EXPECT_TRUE(stream.good());
    EXPECT_EQ(stream.get(), '0');
}

TEST(DeviceFileStreams, BufferWithoutALengthIsNotOpened)
{
    FileMap map;
    map.device.registers[FileDevice::BufferLength] = 0;
    EXPECT_TRUE(IDevFileStream(map.map, "User").fail());
    EXPECT_FALSE(map.device.open) << "closed again";
}

TEST(DeviceFileStreams, BufferLengthThatLiesIsBounded)
{
    FileMap map;
    map.device.registers[FileDevice::BufferLength] = GC_INT64_MAX;
    IDevFileStream stream(map.map, "User");
    std::string text;
    stream >> text;
    EXPECT_EQ(text, "0123456789abcdefghij");
}

TEST(DeviceFileStreams, BytesThatAreNotTakenFailTheStreamAndAreKept)
{
    FileMap map;
    map.device.content.clear();
    ODevFileStream stream(map.map, "User");
    map.device.mostBytes = 3;
    map.device.failingBlock = 1;
    stream << "abcdefgh";
    stream.flush();
    EXPECT_TRUE(stream.bad());
    EXPECT_EQ(map.device.content, "abc");
    stream.clear();
    map.device.failingBlock = -1;
    stream.flush();
    EXPECT_TRUE(stream.good());
    EXPECT_EQ(map.device.content, "abcdefgh");
}

TEST(DeviceFileStreams, CloseTellsOfTheLastFailure)
{
    FileMap map;
    ODevFileStream stream(map.map, "User");
    map.device.failingBlock = 0;
    stream << "abc";
    stream.close();
    EXPECT_TRUE(stream.fail());
    EXPECT_FALSE(map.device.open);
}

TEST(DeviceFileStreams, BuffersAnswerAsBuffersOfFilesDo)
{
    FileMap map;
    IDevFileStreamBuf<char, std::char_traits<char>> input;
    EXPECT_EQ(input.close(), nullptr);
    EXPECT_EQ(input.open(map.map, "User"), &input);
    EXPECT_EQ(input.open(map.map, "User"), nullptr);
    EXPECT_EQ(input.sgetc(), '0');
    EXPECT_EQ(input.close(), &input);
    EXPECT_THROW(input.open(map.map, "Nothing"), InvalidArgumentException);
    EXPECT_FALSE(input.is_open());
    ODevFileStreamBuf<char, std::char_traits<char>> output;
    EXPECT_EQ(output.close(), nullptr);
    EXPECT_EQ(output.open(map.map, "User"), &output);
    EXPECT_EQ(output.sputn("AB", 2), 2);
    EXPECT_EQ(output.pubsync(), 0);
    EXPECT_EQ(map.device.content.substr(0, 3), "AB2");
    EXPECT_EQ(output.close(), &output);
    EXPECT_EQ(output.pubsync(), -1);
}

} // namespace
