#include "archive/archive.h"
#include "archive/read_file.h"
#include "tests/unit/genicam/zip_builder.h"

#include <Base/GCException.h>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace
{

using GENAPI_NAMESPACE::runtime::Archive;
using GENAPI_NAMESPACE::runtime::ReadFile;
using GENICAM_NAMESPACE::RuntimeException;
using koro::test::ZipBuilder;
using testing::HasSubstr;

const size_t plenty = 1u << 20;

// Text of the RuntimeException that `act` throws.
template <class Act>
std::string Refusal(const Act& act)
{
    try
    {
        act();
    }
    catch (const RuntimeException& exception)
    {
        return exception.GetDescription();
    }
    return "nothing thrown";
}

std::string OpenRefusal(const std::string& bytes)
{
    return Refusal([&] { Archive{bytes}; });
}

std::string ReadRefusal(const ZipBuilder& zip, size_t maxSize = plenty)
{
    const std::string bytes = zip.Bytes();
    const Archive archive{bytes};
    return Refusal([&] { archive.Read(archive.Entries().at(0), maxSize); });
}

TEST(Archive, ListsItsEntriesInTheOrderOfItsDirectory)
{
    ZipBuilder zip;
    zip.AddStored("folder/", "");
    zip.AddDeflated("folder/a.xml", std::string(1000, 'a'));
    zip.AddStored("b", "bytes");
    const std::string bytes = zip.Bytes();
    const Archive archive{bytes};
    ASSERT_EQ(archive.Entries().size(), 3u);
    EXPECT_EQ(archive.Entries()[0].name, "folder/");
    EXPECT_TRUE(archive.Entries()[0].folder);
    EXPECT_EQ(archive.Entries()[1].name, "folder/a.xml");
    EXPECT_EQ(archive.Entries()[1].size, 1000u);
    EXPECT_LT(archive.Entries()[1].packedSize, 100u);
    EXPECT_EQ(archive.Entries()[1].method, 8);
    EXPECT_FALSE(archive.Entries()[2].folder);
    EXPECT_EQ(archive.Entries()[2].method, 0);
}

TEST(Archive, ReadsStoredAndDeflatedEntries)
{
    std::string content;
    for (int i = 0; i < 50000; ++i)
        content += std::to_string(i) + ",";
    ZipBuilder zip;
    zip.AddDeflated("deflated", content);
    zip.AddStored("stored", content);
    zip.AddDeflated("empty", "");
    const std::string bytes = zip.Bytes();
    const Archive archive{bytes};
    EXPECT_EQ(archive.Read(archive.Entries()[0], plenty), content);
    EXPECT_EQ(archive.Read(archive.Entries()[1], content.size()), content);
    EXPECT_EQ(archive.Read(archive.Entries()[2], 0), "");
}

TEST(Archive, FindsEntriesByTheirName)
{
    ZipBuilder zip;
    zip.AddStored("a", "first");
    zip.AddStored("a", "second");
    const std::string bytes = zip.Bytes();
    const Archive archive{bytes};
    ASSERT_NE(archive.Find("a"), nullptr);
    EXPECT_EQ(archive.Read(*archive.Find("a"), plenty), "first");
    EXPECT_EQ(archive.Find("A"), nullptr);
}

TEST(Archive, TellsWhereThePackedBytesLie)
{
    ZipBuilder zip;
    zip.AddStored("a", "front");
    zip.AddStored("b", "bytes");
    const std::string bytes = zip.Bytes();
    const Archive archive{bytes};
    const Archive::Place place = archive.PlaceOf(archive.Entries()[1]);
    EXPECT_EQ(bytes.substr(place.offset, place.size), "bytes");
}

TEST(Archive, TakesSizesThatStandBehindTheData)
{
    ZipBuilder zip;
    zip.AddDeflated("a", "content").flags = 8;
    const std::string bytes = zip.Bytes();
    const Archive archive{bytes};
    EXPECT_EQ(archive.Read(archive.Entries()[0], plenty), "content");
}

TEST(Archive, TakesAFewBytesBehindItself)
{
    ZipBuilder zip;
    zip.comment = "a comment";
    zip.AddStored("a", "content");
    for (const size_t padding : {1u, 4u, 4096u, 65000u})
    {
        const std::string bytes = zip.Bytes() + std::string(padding, '\0');
        const Archive archive{bytes};
        EXPECT_EQ(archive.Read(archive.Entries()[0], plenty), "content") << padding;
    }
    EXPECT_EQ(OpenRefusal(zip.Bytes() + std::string(70000, '\0')), "Invalid zip archive: it has no end record");
}

TEST(Archive, RefusesBytesInFront)
{
    ZipBuilder zip;
    zip.AddStored("a", "content");
    EXPECT_EQ(OpenRefusal("12345" + zip.Bytes()), "Invalid zip archive: 5 bytes stand in front of it");
}

TEST(Archive, RefusesWhatIsNoArchive)
{
    EXPECT_EQ(OpenRefusal(""), "Invalid zip archive: it has no end record");
    EXPECT_EQ(OpenRefusal("<RegisterDescription/>"), "Invalid zip archive: it has no end record");
    EXPECT_EQ(OpenRefusal(std::string(100000, 'P')), "Invalid zip archive: it has no end record");
    // A comment that claims to be longer than what is left.
    EXPECT_EQ(OpenRefusal("PK\5\6" + std::string(16, '\0') + "\1\1"), "Invalid zip archive: it has no end record");
}

TEST(Archive, EmptyOnesHaveNoEntries)
{
    const std::string bytes = ZipBuilder().Bytes();
    EXPECT_TRUE(Archive{bytes}.Entries().empty());
}

TEST(Archive, RefusesEveryTruncation)
{
    ZipBuilder zip;
    zip.AddDeflated("a", "content");
    const std::string bytes = zip.Bytes();
    for (size_t size = 0; size < bytes.size(); ++size)
    {
        EXPECT_THAT(OpenRefusal(bytes.substr(0, size)), HasSubstr("Invalid zip archive")) << size;
    }
}

TEST(Archive, SurvivesEveryChangedByte)
{
    ZipBuilder zip;
    zip.AddDeflated("a", "content");
    const std::string good = zip.Bytes();
    for (size_t place = 0; place < good.size(); ++place)
    {
        for (const int change : {1, 0x80, 0xff})
        {
            std::string bytes = good;
            bytes[place] = static_cast<char>(bytes[place] ^ change);
            Refusal([&] {
                const Archive archive{bytes};
                for (const Archive::Entry& entry : archive.Entries())
                    EXPECT_EQ(archive.Read(entry, plenty), "content") << place; // or it is refused
            });
        }
    }
}

TEST(Archive, RefusesDirectoriesThatAreTooSmallForTheirEntries)
{
    ZipBuilder zip;
    zip.AddStored("a", "content");
    zip.claimedCount = 9000;
    EXPECT_EQ(OpenRefusal(zip.Bytes()), "Invalid zip archive: its directory is too small for 9000 entries");
    zip.claimedCount = 10001;
    EXPECT_EQ(OpenRefusal(zip.Bytes()), "Invalid zip archive: it has 10001 entries; at most 10000 are taken");
    zip.claimedCount = 0xffff;
    EXPECT_EQ(OpenRefusal(zip.Bytes()), "Invalid zip archive: the 64-bit form is not supported");
}

TEST(Archive, RefusesDirectoriesElsewhere)
{
    ZipBuilder zip;
    zip.AddStored("a", "content");
    std::string bytes = zip.Bytes();
    bytes[bytes.size() - 6] = 0x7f; // the directory's offset
    EXPECT_EQ(OpenRefusal(bytes), "Invalid zip archive: its directory lies outside");
    bytes = zip.Bytes();
    bytes[bytes.size() - 18] = 1; // the number of this part
    EXPECT_EQ(OpenRefusal(bytes), "Invalid zip archive: it is one of several parts");
}

TEST(Archive, RefusesFoldersAndEncryption)
{
    ZipBuilder folder;
    folder.AddStored("a/", "");
    EXPECT_EQ(ReadRefusal(folder), "Invalid zip archive: the entry 'a/' is a folder");
    ZipBuilder encrypted;
    encrypted.AddDeflated("a", "content").flags = 1;
    EXPECT_EQ(ReadRefusal(encrypted), "Invalid zip archive: the entry 'a' is encrypted");
}

TEST(Archive, RefusesUnknownMethods)
{
    ZipBuilder zip;
    zip.AddDeflated("a", "content").method = 12;
    EXPECT_EQ(ReadRefusal(zip), "Invalid zip archive: the entry 'a' is packed by the unknown method 12");
}

TEST(Archive, RefusesMoreThanTheBound)
{
    ZipBuilder zip;
    zip.AddDeflated("bomb", std::string(10u << 20, '\0'));
    EXPECT_EQ(
        ReadRefusal(zip, 1000), "Invalid zip archive: the entry 'bomb' claims 10485760 bytes; at most 1000 are taken");
}

TEST(Archive, RefusesSizesThatLie)
{
    ZipBuilder less;
    less.AddDeflated("bomb", std::string(10u << 20, '\0')).size = 10;
    EXPECT_EQ(
        ReadRefusal(less), "Invalid zip archive: the data of the entry 'bomb' are damaged or longer than it claims");
    ZipBuilder more;
    more.AddDeflated("a", "content").size = 8;
    EXPECT_EQ(ReadRefusal(more), "Invalid zip archive: the entry 'a' has 7 bytes and claims 8");
    ZipBuilder stored;
    stored.AddStored("a", "content").size = 6;
    EXPECT_EQ(ReadRefusal(stored), "Invalid zip archive: the entry 'a' has 7 bytes and claims 6");
    ZipBuilder packed;
    packed.AddDeflated("a", "content").packedSize = 1000;
    EXPECT_EQ(ReadRefusal(packed), "Invalid zip archive: the entry 'a' is cut off");
}

TEST(Archive, RefusesDamagedData)
{
    ZipBuilder zip;
    ZipBuilder::Entry& entry = zip.AddDeflated("a", "content");
    entry.packed[0] = 7; // a kind of block that does not exist
    EXPECT_EQ(ReadRefusal(zip), "Invalid zip archive: the data of the entry 'a' are damaged or longer than it claims");
}

TEST(Archive, RefusesWrongCheckSums)
{
    ZipBuilder zip;
    zip.AddStored("a", "content").checksum ^= 1;
    EXPECT_EQ(ReadRefusal(zip), "Invalid zip archive: the check sum of the entry 'a' is wrong");
}

TEST(Archive, NamesOfEntriesAreShownWithoutControlCharacters)
{
    ZipBuilder zip;
    zip.AddStored(std::string("\x1b[1m\0", 5) + std::string(5000, 'x'), "content").checksum ^= 1;
    EXPECT_THAT(ReadRefusal(zip), HasSubstr("the entry '?[1m?xxx"));
    EXPECT_LT(ReadRefusal(zip).size(), 300u);
}

TEST(Archive, IsReadFromAFile)
{
    ZipBuilder zip;
    zip.AddStored("a", "content");
    std::ofstream("archive.zip", std::ios::binary) << zip.Bytes();
    Archive archive = Archive::FromFile("archive.zip");
    const Archive moved = std::move(archive);
    EXPECT_EQ(moved.Read(moved.Entries()[0], plenty), "content");
    EXPECT_THAT(
        Refusal([] { Archive::FromFile("/no/such/file"); }), HasSubstr("Failed to open the file '/no/such/file': "));
}

TEST(ReadFile, IsBounded)
{
    std::ofstream("ten", std::ios::binary) << "0123456789";
    EXPECT_EQ(ReadFile("ten", 10), "0123456789");
    EXPECT_EQ(
        Refusal([] { ReadFile("ten", 9); }), "The file 'ten' has more than 9 bytes, which is the most that is taken");
    EXPECT_THAT(Refusal([] { ReadFile("/dev/zero", 5u << 20); }), HasSubstr("has more than 5242880 bytes"));
    EXPECT_THAT(Refusal([] { ReadFile(".", 10); }), HasSubstr("Failed to read the file '.': "));
}

} // namespace
