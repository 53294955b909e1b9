#include "tests/unit/genicam/refusal.h"
#include "tests/unit/genicam/small_map.h"
#include "tests/unit/genicam/zip_builder.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Described;
using koro::test::Load;
using koro::test::RefusalOf;
using koro::test::ZipBuilder;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

const std::string description = Described("<Integer Name=\"A\"><Value>5</Value></Integer>");

int64_t ValueOfA(CNodeMapRef& map)
{
    return CIntegerPtr(map._GetNode("A"))->GetValue();
}

// A map made of zipped bytes in memory.
int64_t ValueOfA(const std::string& zip)
{
    CNodeMapRef map;
    map._LoadXMLFromZIPData(zip.data(), zip.size());
    return ValueOfA(map);
}

std::string Refusal(const std::string& bytes, EContentType_t type = ContentType_ZippedXml)
{
    return RefusalOf<RuntimeException>([&] { Load(CNodeMapFactory(type, bytes.data(), bytes.size())); });
}

TEST(ZippedLoading, TakesStoredAndDeflatedDescriptions)
{
    ZipBuilder stored;
    stored.AddStored("camera.xml", description);
    EXPECT_EQ(ValueOfA(stored.Bytes()), 5);
    ZipBuilder deflated;
    deflated.AddDeflated("camera.xml", description).flags = 8;
    EXPECT_EQ(ValueOfA(deflated.Bytes()), 5);
}

TEST(ZippedLoading, TakesFiles)
{
    ZipBuilder zip;
    zip.AddDeflated("camera.xml", description);
    std::ofstream("camera.zip", std::ios::binary) << zip.Bytes();
    CNodeMapRef map;
    map._LoadXMLFromZIPFile("camera.zip");
    EXPECT_EQ(ValueOfA(map), 5);
    EXPECT_STREQ(map._GetDeviceName().c_str(), "Device");
}

TEST(ZippedLoading, TakesTheFirstOfSeveralEntriesWhateverItsName)
{
    ZipBuilder zip;
    zip.AddDeflated("zzz.txt", description);
    for (int i = 0; i < 9; ++i)
        zip.AddDeflated("camera.xml", "no description");
    EXPECT_EQ(ValueOfA(zip.Bytes()), 5);
}

TEST(ZippedLoading, AFolderOrOtherTextInFrontIsNoXml)
{
    ZipBuilder folder;
    folder.AddStored("folder/", "");
    folder.AddDeflated("folder/camera.xml", description);
    EXPECT_THAT(Refusal(folder.Bytes()), StartsWith("Error while parsing XML stream at line 1"));
    ZipBuilder text;
    text.AddStored("readme", "no description");
    text.AddStored("camera.xml", description);
    EXPECT_THAT(Refusal(text.Bytes()), StartsWith("Error while parsing XML stream at line 1"));
}

TEST(ZippedLoading, TakesTrailingBytesAndRefusesLeadingOnes)
{
    ZipBuilder zip;
    zip.AddDeflated("camera.xml", description);
    EXPECT_EQ(ValueOfA(zip.Bytes() + std::string(1000, '\0')), 5);
    EXPECT_EQ(ValueOfA(zip.Bytes() + "trailing"), 5);
    EXPECT_EQ(Refusal("12" + zip.Bytes()), "Invalid zip archive: 2 bytes stand in front of it");
    EXPECT_EQ(Refusal(zip.Bytes() + std::string(70000, '\0')), "Invalid zip archive: it has no end record");
}

TEST(ZippedLoading, TheKindThatTheCallerTellsDecides)
{
    ZipBuilder zip;
    zip.AddDeflated("camera.xml", description);
    EXPECT_THAT(
        Refusal(zip.Bytes(), ContentType_Xml),
        AllOf(HasSubstr("Error while parsing XML stream at line 1"), HasSubstr("not well-formed")));
    EXPECT_EQ(Refusal(description), "Invalid zip archive: it has no end record");
}

TEST(ZippedLoading, RefusesArchivesThatBringNothing)
{
    EXPECT_EQ(Refusal(ZipBuilder().Bytes()), "Invalid zip archive: it has no entries");
    ZipBuilder zip;
    zip.AddDeflated("camera.xml", description).checksum ^= 1;
    EXPECT_EQ(Refusal(zip.Bytes()), "Invalid zip archive: the check sum of the entry 'camera.xml' is wrong");
}

TEST(ZippedLoading, ExpansionIsBounded)
{
    ZipBuilder bomb;
    bomb.AddDeflated("camera.xml", std::string(1u << 20, ' ')).size = 0x40000000;
    EXPECT_EQ(
        Refusal(bomb.Bytes()),
        "Invalid zip archive: the entry 'camera.xml' claims 1073741824 bytes; at most 268435456 are taken");
    ZipBuilder liar;
    liar.AddDeflated("camera.xml", std::string(50u << 20, ' ')).size = 100;
    EXPECT_EQ(
        Refusal(liar.Bytes()),
        "Invalid zip archive: the data of the entry 'camera.xml' are damaged or longer than it claims");
}

TEST(ZippedLoading, NamesThatPointOutsideAreNamesOnly)
{
    for (const char* const name : {"../escaped.xml", "/tmp/escaped.xml", "..\\escaped.xml", "C:escaped.xml", ""})
    {
        ZipBuilder zip;
        zip.AddDeflated(name, description);
        EXPECT_EQ(ValueOfA(zip.Bytes()), 5) << name;
    }
    EXPECT_FALSE(std::ifstream("../escaped.xml"));
    EXPECT_FALSE(std::ifstream("/tmp/escaped.xml"));
}

TEST(ZippedLoading, AnArchiveInsideIsNotExpanded)
{
    ZipBuilder inner;
    inner.AddDeflated("camera.xml", description);
    ZipBuilder outer;
    outer.AddDeflated("inner.zip", inner.Bytes());
    EXPECT_THAT(Refusal(outer.Bytes()), StartsWith("Error while parsing XML stream"));
}

TEST(ZippedLoading, MissingFilesAreNamed)
{
    for (const EContentType_t type : {ContentType_Xml, ContentType_ZippedXml})
    {
        EXPECT_THAT(
            RefusalOf<RuntimeException>([&] { Load(CNodeMapFactory(type, "/no/such/description")); }),
            HasSubstr("Failed to open the file '/no/such/description'"));
    }
}

TEST(ZippedLoading, ATextThatWasReleasedUnreadIsMissed)
{
    CNodeMapFactory factory(description.c_str());
    EXPECT_FALSE(factory.IsCameraDescriptionFileDataReleased());
    factory.ReleaseCameraDescriptionFileData();
    EXPECT_TRUE(factory.IsCameraDescriptionFileDataReleased());
    EXPECT_EQ(
        RefusalOf<LogicalErrorException>([&] { Load(factory); }),
        "The camera description was released before it was read");
}

TEST(ZippedLoading, OneFactoryMakesManyMaps)
{
    ZipBuilder zip;
    zip.AddDeflated("camera.xml", description);
    const std::string bytes = zip.Bytes();
    CNodeMapFactory factory(ContentType_ZippedXml, bytes.data(), bytes.size());
    EXPECT_FALSE(factory.IsLoaded());
    Load(factory);
    EXPECT_TRUE(factory.IsLoaded());
    CNodeMapRef map(factory.CreateNodeMap("Second"));
    EXPECT_EQ(ValueOfA(map), 5);
    EXPECT_STREQ(map._GetDeviceName().c_str(), "Second");
}

} // namespace
