#include "tools/koro/file_prefix.h"

#include <gtest/gtest.h>

namespace
{

using namespace koro::tool;

// A list of cameras on one interface, by id and serial number.
class FilePrefixTest : public testing::Test
{
protected:
    FilePrefixTest() { producer.interfaces.resize(1); }

    void Add(const std::string& id, const OptionalText& serialNumber)
    {
        CameraRecord camera;
        camera.id = id;
        camera.serialNumber = serialNumber;
        producer.interfaces[0].cameras.push_back(camera);
    }
    std::string PrefixOf(size_t index)
    {
        producer.interfaces[0].id = "eth0";
        const std::vector<ProducerRecord> producers(numProducers, producer);
        const auto listed = AllCameras(producers);
        return FilePrefix(listed[index], listed);
    }

    ProducerRecord producer;
    size_t numProducers = 1;
};

TEST_F(FilePrefixTest, SerialNumberThatIsUniqueNamesTheFiles)
{
    Add("a", "1");
    Add("b", "2");
    EXPECT_EQ(PrefixOf(0), "1");
    EXPECT_EQ(PrefixOf(1), "2");
}

TEST_F(FilePrefixTest, IdNamesTheFilesWhereTheSerialNumberIsShared)
{
    Add("dev", "1");
    Add("dev/left", "1");
    Add("other", "2");
    EXPECT_EQ(PrefixOf(0), "dev");
    EXPECT_EQ(PrefixOf(1), "dev_left");
    EXPECT_EQ(PrefixOf(2), "2");
}

TEST_F(FilePrefixTest, IdNamesTheFilesOfACameraWithoutSerialNumber)
{
    Add("a", "");
    Add("b", std::nullopt);
    EXPECT_EQ(PrefixOf(0), "a");
    EXPECT_EQ(PrefixOf(1), "b");
}

TEST_F(FilePrefixTest, IdsThatBecomeTheSameFileNameAreKeptApart)
{
    Add("dev/1", "1");
    Add("dev:1", "1");
    EXPECT_NE(PrefixOf(0), PrefixOf(1));
    const std::string longText(70, 'x');
    producer.interfaces[0].cameras.clear();
    Add(longText + "1", "1");
    Add(longText + "2", "1");
    EXPECT_NE(PrefixOf(0), PrefixOf(1));
}

TEST_F(FilePrefixTest, CameraThatIsListedTwiceIsOneCamera)
{
    Add("a", "1");
    numProducers = 2;
    EXPECT_EQ(PrefixOf(0), "1");
}

} // namespace
