#include "tests/boundary/info_getters.h"
#include "tests/boundary/tree_test.h"

#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;

class PortURL : public TreeTest
{
protected:
    PortURL() { producer->ClearJournal(); }

    const KORO_PortHandle port =
        Get<KORO_PortHandle>(KORO_Module_GetPort, Get<KORO_ModuleHandle>(KORO_Interface_ToModule, tree.interface));
    const KORO_PortURLHandle url = Get<KORO_PortURLHandle>(KORO_Port_GetURL, port, std::size_t{0});
};

const std::string int32Type = "5 (INFO_DATATYPE_INT32)";
const std::string uint64Type = "8 (INFO_DATATYPE_UINT64)";

} // namespace

TEST_F(PortURL, TextsComeFromTheURLsInformation)
{
    ExpectTextGetters(
        producer, "GCGetPortURLInfo", url,
        {{0, "URL_INFO_URL", "url", KORO_PortURL_GetURL},
         {10, "URL_INFO_FILENAME", "fileName", KORO_PortURL_GetFileName}});
}

TEST_F(PortURL, NumbersOf32BitsComeFromTheURLsInformation)
{
    const struct
    {
        std::int32_t command;
        const char* commandName;
        const char* parameter;
        ScalarExport<KORO_PortURLHandle, std::int32_t> function;
    } getters[] = {
        {1, "URL_INFO_SCHEMA_VER_MAJOR", "fileSchemaVersionMajor", KORO_PortURL_GetFileSchemaVersionMajor},
        {2, "URL_INFO_SCHEMA_VER_MINOR", "fileSchemaVersionMinor", KORO_PortURL_GetFileSchemaVersionMinor},
        {3, "URL_INFO_FILE_VER_MAJOR", "fileVersionMajor", KORO_PortURL_GetFileVersionMajor},
        {4, "URL_INFO_FILE_VER_MINOR", "fileVersionMinor", KORO_PortURL_GetFileVersionMinor},
        {5, "URL_INFO_FILE_VER_SUBMINOR", "fileVersionSubminor", KORO_PortURL_GetFileVersionSubminor},
        {9, "URL_INFO_SCHEME", "scheme", KORO_PortURL_GetScheme},
    };
    for (const auto& [command, commandName, parameter, function] : getters)
    {
        ExpectNumberGetter<KORO_PortURLHandle, std::int32_t>(
            producer, {"GCGetPortURLInfo", command, commandName}, scripted::Int32(-7), int32Type, parameter, -7,
            function, url);
    }
}

TEST_F(PortURL, NumbersOf64BitsComeFromTheURLsInformation)
{
    ExpectNumberGetter<KORO_PortURLHandle, std::uint64_t>(
        producer, {"GCGetPortURLInfo", 7, "URL_INFO_FILE_REGISTER_ADDRESS"}, scripted::UInt64(0xFEDCBA9876543210),
        uint64Type, "fileRegisterAddress", 0xFEDCBA9876543210, KORO_PortURL_GetFileRegisterAddress, url);
    ExpectNumberGetter<KORO_PortURLHandle, std::uint64_t>(
        producer, {"GCGetPortURLInfo", 8, "URL_INFO_FILE_SIZE"}, scripted::UInt64(0x123456789A), uint64Type, "fileSize",
        0x123456789A, KORO_PortURL_GetFileSize, url);
}

TEST_F(PortURL, HashComesAsTheProducerDeliversIt)
{
    const InfoQuery query{"GCGetPortURLInfo", 6, "URL_INFO_FILE_SHA1_HASH"};
    const auto fetch = [&](std::uint8_t* hash, std::size_t* size) {
        return KORO_PortURL_GetFileSHA1Hash(url, hash, size);
    };
    std::size_t size = 0;
    for (const auto& bytes : {std::string(20, '\x5a'), std::string("a\0b", 3)})
    {
        producer->SetInfo(query.function, query.command, scripted::Bytes(GenTL::INFO_DATATYPE_BUFFER, bytes));
        ExpectBufferOut<std::uint8_t>("fileSha1Hash", bytes, fetch);
    }
    ExpectFreshQuery(producer, query, [&] { fetch(nullptr, &size); });

    producer->SetInfo(query.function, query.command, scripted::Text("5a5a"));
    EXPECT_EQ(
        Outcome(fetch(nullptr, &size)), WrongType(query, "13 (INFO_DATATYPE_BUFFER)", "1 (INFO_DATATYPE_STRING)"));
    producer->SetInfo(query.function, query.command, scripted::Bytes(GenTL::INFO_DATATYPE_BUFFER, ""));
    std::uint8_t byte = '#';
    size = 0;
    EXPECT_EQ(Outcome(fetch(&byte, &size)), Error{});
    EXPECT_EQ(size, 0u);
    ExpectQueryFailures(producer, query, [&] { return fetch(nullptr, nullptr); });
}

TEST_F(PortURL, RawInformationComesFromTheURLsInformation)
{
    ExpectRawInfo(producer, "GCGetPortURLInfo", KORO_PortURL_GetInfo, url);
}

TEST_F(PortURL, MissingInformationIsToldAsItIs)
{
    producer->Edit([](scripted::Tree& edited) {
        std::erase_if(edited.interfaces[0]->port.urls[0], [](const auto& info) { return info.first != 0; });
    });
    std::uint64_t number = 0;

    EXPECT_EQ(GetText(KORO_PortURL_GetURL, url).substr(0, 6), "local:");
    EXPECT_EQ(
        Outcome(KORO_PortURL_GetFileRegisterAddress(url, &number)),
        InfoFailure(
            {"GCGetPortURLInfo", 7, "URL_INFO_FILE_REGISTER_ADDRESS"}, ProducerErrorOf(GenTL::GC_ERR_NOT_IMPLEMENTED)));
}

TEST_F(PortURL, EachURLIsAskedByItsIndex)
{
    producer->Edit([](scripted::Tree& edited) {
        edited.interfaces[0]->devices[0]->streams[0]->port.urls = {
            {{0, scripted::Text("local:first.xml;0;1")}}, {{0, scripted::Text("local:second.xml;0;1")}}};
    });
    const auto streamPort =
        Get<KORO_PortHandle>(KORO_Module_GetPort, Get<KORO_ModuleHandle>(KORO_DataStream_ToModule, tree.stream));
    const auto first = Get<KORO_PortURLHandle>(KORO_Port_GetURL, streamPort, std::size_t{0});
    const auto second = Get<KORO_PortURLHandle>(KORO_Port_GetURL, streamPort, std::size_t{1});

    EXPECT_NE(first, second);
    EXPECT_EQ(GetText(KORO_PortURL_GetURL, first), "local:first.xml;0;1");
    producer->ClearJournal();
    EXPECT_EQ(GetText(KORO_PortURL_GetURL, second), "local:second.xml;0;1");
    EXPECT_EQ(producer->Journal().front(), "GCGetPortURLInfo(if0-dev0-stream0, 1, 0, size)");
}

TEST_F(PortURL, ParentIsThePort)
{
    EXPECT_EQ(Get<KORO_PortHandle>(KORO_PortURL_GetParentPort, url), port);
    EXPECT_EQ(Outcome(KORO_PortURL_GetParentPort(url, nullptr)), NullPointer("portHandle"));
    EXPECT_EQ(Outcome(KORO_PortURL_GetParentPort(nullptr, nullptr)), InvalidHandle("portUrlHandle"));
}

TEST_F(PortURL, PortThatGoesDuringAQueryHasExpired)
{
    producer->Answer("GCGetPortURLInfo", GenTL::GC_ERR_SUCCESS); // even over the closed interface
    producer->OnEntry("GCGetPortURLInfo", [this] { KORO_Interface_Destruct(tree.interface); });
    std::size_t size = 0;

    EXPECT_EQ(Outcome(KORO_PortURL_GetURL(url, nullptr, &size)), parentExpired);
    EXPECT_EQ(Outcome(KORO_PortURL_GetURL(url, nullptr, &size)), InvalidHandle("portUrlHandle"));
}

} // namespace koro::test
