// How a module comes to its node maps: URLs, what is asked of the producer, and files for debugging.
#include "tests/boundary/described_camera.h"

#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using testing::HasSubstr;

using Strings = std::vector<std::string>;

// On the stream: a device and its remote device have fetched theirs when they are open.
class ModuleNodeMaps : public DescribedCamera
{
protected:
    static std::string Described(const std::string& nodes) { return DescriptionOf(nodes, "StreamPort"); }

    struct Owner
    {
        KORO_ModuleHandle module;
        std::string id;
        std::string portName;
        std::string debugFile;
    };

    std::vector<Owner> Owners() const
    {
        return {
            {Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system), "system", "TLPort", "tl_system_dbg.xml"},
            {Get<KORO_ModuleHandle>(KORO_Interface_ToModule, tree.interface), "if0", "InterfacePort",
             "tl_interface_dbg.xml"},
            {Get<KORO_ModuleHandle>(KORO_Device_ToModule, tree.device), "if0-dev0", "DevicePort", "tl_device_dbg.xml"},
            {Get<KORO_ModuleHandle>(KORO_DataStream_ToModule, tree.stream), "if0-dev0-stream0", "StreamPort",
             "tl_datastream_dbg.xml"},
            {Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice), "if0-dev0-remote", "Device",
             "tl_remotedevice_dbg.xml"},
        };
    }

    static scripted::Port& StreamPort(scripted::Tree& edited)
    {
        return edited.interfaces[0]->devices[0]->streams[0]->port;
    }

    // URLs of which only the text is known, as of producers that answer nothing else.
    void SetURLs(const Strings& texts) const
    {
        producer->Edit([&](scripted::Tree& edited) {
            auto& urls = StreamPort(edited).urls;
            urls.clear();
            for (const auto& text : texts)
                urls.push_back({{GenTL::URL_INFO_URL, scripted::Text(text)}});
        });
    }

    void SetRegisters(std::uint64_t address, const std::string& bytes) const
    {
        producer->Edit([&](scripted::Tree& edited) { StreamPort(edited).registers[address] = bytes; });
    }

    void DescribeStreamBy(const std::string& description, const std::string& fileName = "test.xml") const
    {
        producer->Edit([&](scripted::Tree& edited) { DescribePort(StreamPort(edited), description, fileName); });
    }

    // Opens the stream again, so that it has fetched nothing yet.
    void ReopenStream()
    {
        Require(KORO_DataStream_Destruct(tree.stream));
        tree.stream = Get<KORO_DataStreamHandle>(KORO_DataStreamDescriptor_OpenDataStream, tree.streamDescriptor);
    }

    // What a fresh stream reads for this URL: "address, size" of each transfer.
    Strings ReadsFor(const std::string& url)
    {
        SetURLs({url});
        ReopenStream();
        producer->ClearJournal();
        Count(Stream());
        Strings reads = Reads();
        for (auto& read : reads)
            read = read.substr(std::string("GCReadPort(if0-dev0-stream0, ").size());
        return reads;
    }

    std::size_t Count(KORO_ModuleHandle module) const { return Get<std::size_t>(KORO_Module_GetNumNodeMaps, module); }

    static bool HasNode(KORO_NodeMapHandle map, const std::string& name)
    {
        return Get<KORO_Bool8>(KORO_NodeMap_GetHasNode, map, name.c_str(), name.size() + 1) == 1;
    }
    static KORO_NodeMapHandle MapAt(KORO_ModuleHandle module, std::size_t index)
    {
        return Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, index);
    }

    KORO_ModuleHandle Stream() const { return Get<KORO_ModuleHandle>(KORO_DataStream_ToModule, tree.stream); }

    const KORO_ModuleHandle stream = Stream(); // ends with a reopening
};

} // namespace

TEST_F(ModuleNodeMaps, FirstRequestFetchesAllAndTheSecondNothing)
{
    producer->ClearJournal();
    EXPECT_EQ(Count(stream), 1u);
    const auto journal = producer->Journal();
    const Strings expected = {
        "GCGetPortInfo(if0-dev0-stream0, 12, size)",
        "GCGetPortInfo(if0-dev0-stream0, 12, data)",
        "TLGetInfo(system, 6, size)",
        "TLGetInfo(system, 6, data)",
        "TLGetInfo(system, 5, size)",
        "TLGetInfo(system, 5, data)",
        "GCGetNumPortURLs(if0-dev0-stream0)",
        "GCGetPortURLInfo(if0-dev0-stream0, 0, 0, size)",
        "GCGetPortURLInfo(if0-dev0-stream0, 0, 0, data)",
        "GCGetPortURLInfo(if0-dev0-stream0, 0, 9, size)",
        "GCGetPortURLInfo(if0-dev0-stream0, 0, 9, data)",
        "GCGetPortURLInfo(if0-dev0-stream0, 0, 7, size)",
        "GCGetPortURLInfo(if0-dev0-stream0, 0, 7, data)",
        "GCGetPortURLInfo(if0-dev0-stream0, 0, 8, size)",
        "GCGetPortURLInfo(if0-dev0-stream0, 0, 8, data)",
        "GCGetPortURLInfo(if0-dev0-stream0, 0, 10, size)",
        "GCGetPortURLInfo(if0-dev0-stream0, 0, 10, data)"};
    ASSERT_EQ(journal.size(), expected.size() + 1);
    EXPECT_EQ(Strings(journal.begin(), journal.end() - 1), expected);
    EXPECT_EQ(FunctionOf(journal.back()), "GCReadPort");

    producer->ClearJournal();
    EXPECT_EQ(Count(stream), 1u);
    EXPECT_EQ(MapAt(stream, 0), MapAt(stream, 0));
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(ModuleNodeMaps, OpeningADeviceFetchesItsOwnAndThoseOfItsRemoteDevice)
{
    producer->ClearJournal();
    Reopen();
    Strings readers;
    for (const auto& read : Reads())
        readers.push_back(read.substr(0, read.find(',')));
    EXPECT_EQ(readers, (Strings{"GCReadPort(if0-dev0", "GCReadPort(if0-dev0-remote"}));

    producer->ClearJournal();
    EXPECT_EQ(Count(Get<KORO_ModuleHandle>(KORO_Device_ToModule, tree.device)), 1u);
    EXPECT_EQ(Count(Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice)), 1u);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(ModuleNodeMaps, EveryKindOfModuleHasThem)
{
    for (const auto& owner : Owners())
    {
        SCOPED_TRACE(owner.id);
        ASSERT_EQ(Count(owner.module), 1u);
        EXPECT_TRUE(HasNode(MapAt(owner.module, 0), owner.portName));
    }
}

TEST_F(ModuleNodeMaps, EachOutputPointerAndTheIndexAreChecked)
{
    KORO_NodeMapHandle map = nullptr;
    EXPECT_EQ(Outcome(KORO_Module_GetNodeMap(stream, 1, &map)), outOfRange);
    EXPECT_EQ(map, nullptr);
    EXPECT_EQ(Outcome(KORO_Module_GetNodeMap(stream, ~std::size_t{0}, &map)), outOfRange);
    EXPECT_EQ(Outcome(KORO_Module_GetNodeMap(stream, 0, nullptr)), NullPointer("nodeMapHandle"));
    EXPECT_EQ(Outcome(KORO_Module_GetNumNodeMaps(stream, nullptr)), NullPointer("numNodeMaps"));
}

TEST_F(ModuleNodeMaps, PortIsThereWithoutThem)
{
    producer->ClearJournal();
    EXPECT_NE(Get<KORO_PortHandle>(KORO_Module_GetPort, stream), nullptr);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(ModuleNodeMaps, EveryURLYieldsOneInTheOrderOfTheURLs)
{
    SetRegisters(0x20000, Described("<Category Name=\"First\"/>").append(0x180, ' '));
    SetRegisters(0x30000, Described("<Category Name=\"Second\"/>").append(0x180, ' '));
    SetURLs({"local:a.xml;20000;280", "local:b.xml;30000;280"});

    ASSERT_EQ(Count(stream), 2u);
    EXPECT_TRUE(HasNode(MapAt(stream, 0), "First"));
    EXPECT_TRUE(HasNode(MapAt(stream, 1), "Second"));
    EXPECT_NE(MapAt(stream, 0), MapAt(stream, 1));
}

TEST_F(ModuleNodeMaps, TextOfTheURLStandsInForWhatTheProducerDoesNotAnswer)
{
    EXPECT_EQ(ReadsFor("local:///tl_system.xml;F0F00000;3BF"), Strings{"4042260480, 959)"});
    EXPECT_EQ(ReadsFor("local:tl_system.xml;F0F00000;3BF?SchemaVersion=1.0.0"), Strings{"4042260480, 959)"});
    EXPECT_EQ(ReadsFor("LOCAL:a.xml;10;20"), Strings{"16, 32)"});
    EXPECT_EQ(ReadsFor("Local:////a.xml;0x10;0X20"), Strings{"16, 32)"});
    EXPECT_EQ(ReadsFor("local:a.xml; +10;20 bytes"), Strings{"16, 32)"});
    EXPECT_EQ(ReadsFor("local:;fffffffffffffffe;0"), Strings{"18446744073709551614, 0)"});
    EXPECT_EQ(ReadsFor("local:a.xml;-2;1"), Strings{"18446744073709551614, 1)"});
}

TEST_F(ModuleNodeMaps, URLThatCannotBeUnderstoodYieldsNone)
{
    for (const auto* url :
         {"local:a.xml;10", "local:a.xml;10;20;30", "local;10;20", "", ";;", ":", "custom:a.xml;10;20",
          "http://a;10;20", "file:///a.xml;10;20", " local:a.xml;10;20", "local:a.xml;;20", "local:a.xml;10;",
          "local:a.xml;xyz;20", "local:a.xml;10;xyz", "local:a.xml;10000000000000000;20",
          "local:a.xml;10;10000000000000000", "local:a.xml;10;?SchemaVersion=1.0.0"})
    {
        EXPECT_EQ(ReadsFor(url), Strings{}) << url;
    }
}

TEST_F(ModuleNodeMaps, URLWithEveryFieldWrongYieldsNoneAndTheNextOneServes)
{
    SetRegisters(0x20000, Described("<Category Name=\"Root\"/>").append(0x280, ' '));
    SetURLs({"wrong", "local:a.xml;20000;280"});
    producer->Edit([](scripted::Tree& edited) {
        auto& wrong = StreamPort(edited).urls[0];
        wrong[GenTL::URL_INFO_SCHEME] = scripted::Text("local");
        wrong[GenTL::URL_INFO_FILE_REGISTER_ADDRESS] = scripted::Text("20000");
        wrong[GenTL::URL_INFO_FILE_SIZE] = scripted::Int32(-1);
        wrong[GenTL::URL_INFO_FILENAME] = scripted::UInt64(7);
    });
    for (const auto* text : {"", "wrong", "wrong:;;", ";:;:;", "file:?;-;?", "local:;wrong;wrong", "local:;;;;"})
    {
        SCOPED_TRACE(text);
        producer->Edit(
            [&](scripted::Tree& edited) { StreamPort(edited).urls[0][GenTL::URL_INFO_URL] = scripted::Text(text); });
        ReopenStream();
        ASSERT_EQ(Count(Stream()), 1u);
        EXPECT_TRUE(HasNode(MapAt(Stream(), 0), "Root"));
    }
    producer->Edit(
        [](scripted::Tree& edited) { StreamPort(edited).urls[0][GenTL::URL_INFO_URL] = scripted::UInt64(7); });
    ReopenStream();
    EXPECT_EQ(Count(Stream()), 1u);
}

TEST_F(ModuleNodeMaps, EachPartFallsBackByItself)
{
    const struct
    {
        std::int32_t command;
        scripted::Info answer;
        const char* read;
    } answered[] = {
        {GenTL::URL_INFO_FILE_REGISTER_ADDRESS, scripted::UInt64(0x40), "64, 32)"},
        {GenTL::URL_INFO_FILE_SIZE, scripted::UInt64(0x8), "16, 8)"},
        {GenTL::URL_INFO_FILENAME, scripted::Text("b.xml"), "16, 32)"},
        {GenTL::URL_INFO_SCHEME, scripted::Int32(GenTL::URL_SCHEME_LOCAL), "16, 32)"},
        // An answer of the wrong kind is none.
        {GenTL::URL_INFO_FILE_SIZE, scripted::UInt32(0x8), "16, 32)"},
    };
    for (const auto& [command, answer, read] : answered)
    {
        producer->SetInfo("GCGetPortURLInfo", command, answer);
        EXPECT_EQ(ReadsFor("local:a.xml;10;20"), Strings{read}) << command;
        producer->SetInfo("GCGetPortURLInfo", command, scripted::Failing(GenTL::GC_ERR_NOT_IMPLEMENTED));
    }
}

TEST_F(ModuleNodeMaps, SchemeOfTheProducerWinsOverTheText)
{
    for (const std::int32_t scheme : {1, 2, 3, -1, 1000, 1001})
    {
        producer->SetInfo("GCGetPortURLInfo", GenTL::URL_INFO_SCHEME, scripted::Int32(scheme));
        EXPECT_EQ(ReadsFor("local:a.xml;10;20"), Strings{}) << scheme;
    }
    producer->SetInfo("GCGetPortURLInfo", GenTL::URL_INFO_SCHEME, scripted::Int32(0));
    EXPECT_EQ(ReadsFor("custom:a.xml;10;20"), Strings{"16, 32)"});
}

TEST_F(ModuleNodeMaps, URLThatFailsIsPassedOverAndTheNextIsTried)
{
    const auto description = Described("<Category Name=\"Root\"/>").append(0x280, ' ');
    SetRegisters(0x20000, description);
    SetURLs({"http://somewhere/a.xml;20000;280", "local:a.xml;FFFFFF00;280", "nonsense", "local:a.xml;20000;280"});

    EXPECT_EQ(Count(stream), 1u);
    EXPECT_TRUE(HasNode(MapAt(stream, 0), "Root"));
}

TEST_F(ModuleNodeMaps, URLWithoutATextIsPassedOver)
{
    producer->SetInfo("GCGetPortURLInfo", GenTL::URL_INFO_URL, scripted::Failing(GenTL::GC_ERR_IO));
    EXPECT_EQ(Count(stream), 0u);
    KORO_NodeMapHandle map = nullptr;
    EXPECT_EQ(Outcome(KORO_Module_GetNodeMap(stream, 0, &map)), outOfRange);
}

TEST_F(ModuleNodeMaps, FailedTransferLeavesNeitherAMapNorAnError)
{
    EXPECT_EQ(Outcome(KORO_Module_GetNumNodeMaps(nullptr, nullptr)), InvalidHandle("moduleHandle"));
    for (const auto code : {GenTL::GC_ERR_IO, GenTL::GC_ERR_TIMEOUT, GenTL::GC_ERR_ACCESS_DENIED, GenTL::GC_ERR_ABORT})
    {
        producer->Answer("GCReadPort", code);
        ReopenStream();
        EXPECT_EQ(Count(Stream()), 0u);
    }
    EXPECT_EQ(LastError(), InvalidHandle("moduleHandle"));
}

TEST_F(ModuleNodeMaps, NoURLMeansNone)
{
    SetURLs({});
    EXPECT_EQ(Count(stream), 0u);
}

TEST_F(ModuleNodeMaps, FileNameTellsWhetherTheDescriptionIsZipped)
{
    const struct
    {
        const char* fileName;
        bool zipped;
    } names[] = {{"a.xml", false}, {"a.zip", true}, {"a.zip.xml", true}, {"A.ZIP", false}, {"a.zi.p", false}};
    for (const auto& [fileName, zipped] : names)
    {
        DescribeStreamBy(Described("<Category Name=\"Root\"/>"), fileName);
        ReopenStream();
        std::size_t count = 0;
        const Error outcome = Outcome(KORO_NodeMap_GetNumNodes(MapAt(Stream(), 0), &count));
        EXPECT_EQ(outcome.code, zipped ? KORO_RETURN_CODE_ERROR : KORO_RETURN_CODE_SUCCESS) << fileName;
        EXPECT_THAT(outcome.text, HasSubstr(zipped ? "zip archive" : "")) << fileName;
    }
}

TEST_F(ModuleNodeMaps, DescriptionBeyondTheBoundIsNotAskedFor)
{
    producer->SetInfo("GCGetPortURLInfo", GenTL::URL_INFO_FILE_SIZE, scripted::UInt64((256u << 20) + 1));
    EXPECT_EQ(ReadsFor("local:a.xml;10;20"), Strings{});
    producer->SetInfo("GCGetPortURLInfo", GenTL::URL_INFO_FILE_SIZE, scripted::UInt64(~std::uint64_t{0}));
    EXPECT_EQ(ReadsFor("local:a.xml;10;20"), Strings{});
}

TEST_F(ModuleNodeMaps, FailureOutsideOfTheSingleDescriptionsIsToldAndTheNextRequestTriesAgain)
{
    std::size_t count = 0;
    producer->SetInfo("GCGetPortInfo", GenTL::PORT_INFO_PORTNAME, scripted::Failing(GenTL::GC_ERR_IO));
    EXPECT_EQ(Outcome(KORO_Module_GetNumNodeMaps(stream, &count)).code, KORO_RETURN_CODE_IO_ERROR);
    producer->SetInfo("GCGetPortInfo", GenTL::PORT_INFO_PORTNAME, scripted::Text("StreamPort"));

    producer->SetInfo("TLGetInfo", GenTL::TL_INFO_PATHNAME, scripted::Failing(GenTL::GC_ERR_IO));
    EXPECT_EQ(Outcome(KORO_Module_GetNumNodeMaps(stream, &count)).code, KORO_RETURN_CODE_IO_ERROR);
    producer->SetInfo("TLGetInfo", GenTL::TL_INFO_PATHNAME, scripted::Text("/nowhere/a.cti"));

    producer->AnswerOnce("GCGetNumPortURLs", GenTL::GC_ERR_IO);
    EXPECT_EQ(Outcome(KORO_Module_GetNumNodeMaps(stream, &count)).code, KORO_RETURN_CODE_IO_ERROR);
    EXPECT_EQ(count, 0u);

    EXPECT_EQ(Count(stream), 1u);
}

TEST_F(ModuleNodeMaps, FileForDebuggingStandsBeforeTheURLs)
{
    for (const auto& owner : Owners())
    {
        producer.Folder().MakeFile(
            owner.debugFile, DescriptionOf("<Category Name=\"DebugOf" + owner.portName + "\"/>", owner.portName));
    }
    Reopen();
    tree.streamDescriptor =
        Get<KORO_DataStreamDescriptorHandle>(KORO_Device_GetDataStream, tree.device, std::size_t{0});
    tree.stream = Get<KORO_DataStreamHandle>(KORO_DataStreamDescriptor_OpenDataStream, tree.streamDescriptor);

    for (const auto& owner : Owners())
    {
        SCOPED_TRACE(owner.id);
        ASSERT_EQ(Count(owner.module), 2u);
        EXPECT_TRUE(HasNode(MapAt(owner.module, 0), "DebugOf" + owner.portName));
        EXPECT_FALSE(HasNode(MapAt(owner.module, 1), "DebugOf" + owner.portName));
    }
}

TEST_F(ModuleNodeMaps, FileForDebuggingIsPlainTextWhateverElseIsZipped)
{
    producer.Folder().MakeFile("tl_datastream_dbg.xml", Described("<Category Name=\"Debug\"/>"));
    DescribeStreamBy("whatever", "a.zip");
    ASSERT_EQ(Count(stream), 2u);
    EXPECT_TRUE(HasNode(MapAt(stream, 0), "Debug"));
}

TEST_F(ModuleNodeMaps, FileForDebuggingServesWithoutAnyURL)
{
    producer.Folder().MakeFile("tl_datastream_dbg.xml", Described("<Category Name=\"Debug\"/>"));
    SetURLs({});
    ASSERT_EQ(Count(stream), 1u);
    EXPECT_TRUE(HasNode(MapAt(stream, 0), "Debug"));
}

TEST_F(ModuleNodeMaps, FileThatComesAfterTheFirstRequestHasNoEffect)
{
    EXPECT_EQ(Count(stream), 1u);
    producer.Folder().MakeFile("tl_datastream_dbg.xml", Described(""));
    EXPECT_EQ(Count(stream), 1u);
}

TEST_F(ModuleNodeMaps, PortOfAnotherNameHasNoFileForDebugging)
{
    for (const auto* file :
         {"tl_system_dbg.xml", "tl_interface_dbg.xml", "tl_device_dbg.xml", "tl_datastream_dbg.xml",
          "tl_remotedevice_dbg.xml"})
        producer.Folder().MakeFile(file, Described(""));
    for (const auto* name : {"device", "Device ", "", "TLBuffer", "Port"})
    {
        producer->SetInfo("GCGetPortInfo", GenTL::PORT_INFO_PORTNAME, scripted::Text(name));
        ReopenStream();
        EXPECT_EQ(Count(Stream()), 1u) << name;
    }
}

TEST_F(ModuleNodeMaps, FolderThatBearsTheProducersNameHidesTheFileForDebugging)
{
    const std::string name = "scripted_1_5.cti";
    const auto folder = producer.Folder().MakeFolder("folder_of_" + name);
    producer.Folder().MakeFile("folder_of_" + name + "/tl_datastream_dbg.xml", Described(""));
    producer->SetInfo("TLGetInfo", GenTL::TL_INFO_PATHNAME, scripted::Text(folder + "/" + name));
    EXPECT_EQ(Count(stream), 1u);
}

TEST_F(ModuleNodeMaps, PathThatLacksTheFilesNameStaysWhole)
{
    producer.Folder().MakeFile("prefix_tl_datastream_dbg.xml", Described("<Category Name=\"Debug\"/>"));
    producer->SetInfo("TLGetInfo", GenTL::TL_INFO_PATHNAME, scripted::Text(producer.Folder().File("prefix_")));
    producer->SetInfo("TLGetInfo", GenTL::TL_INFO_NAME, scripted::Text("other.cti"));
    EXPECT_EQ(Count(stream), 2u);
}

TEST_F(ModuleNodeMaps, WhateverIsThereUnderTheNameCountsAsTheFile)
{
    producer.Folder().MakeFolder("tl_datastream_dbg.xml");
    ASSERT_EQ(Count(stream), 2u);
    std::size_t count = 0;
    EXPECT_EQ(
        Outcome(KORO_NodeMap_GetNumNodes(MapAt(stream, 0), &count)),
        (Error{
            KORO_RETURN_CODE_ERROR,
            "The description file (" + producer.Folder().File("tl_datastream_dbg.xml") + ") is no regular file!"}));
    EXPECT_EQ(Get<std::size_t>(KORO_NodeMap_GetNumNodes, MapAt(stream, 1)), 2u);
}

TEST_F(ModuleNodeMaps, LinkToNowhereIsNoFile)
{
    producer.Folder().MakeLink(producer.Folder().File("nowhere"), "tl_datastream_dbg.xml");
    EXPECT_EQ(Count(stream), 1u);
}

TEST_F(ModuleNodeMaps, HandlesEndWithTheModule)
{
    const auto owners = Owners();
    std::vector<KORO_NodeMapHandle> maps;
    std::vector<KORO_NodeHandle> nodes;
    for (const auto& owner : owners)
    {
        maps.push_back(MapAt(owner.module, 0));
        nodes.push_back(Get<KORO_NodeHandle>(KORO_NodeMap_GetNode, maps.back(), std::size_t{0}));
    }
    const auto expectEnded = [&](std::size_t index) {
        std::size_t size = 0;
        EXPECT_EQ(Outcome(KORO_NodeMap_GetNumNodes(maps[index], &size)), InvalidHandle("nodeMapHandle"));
        EXPECT_EQ(Outcome(KORO_Node_GetName(nodes[index], nullptr, &size)), InvalidHandle("nodeHandle"));
        EXPECT_EQ(Outcome(KORO_Module_GetNumNodeMaps(owners[index].module, &size)), InvalidHandle("moduleHandle"));
    };
    Require(KORO_DataStream_Destruct(tree.stream));
    expectEnded(3);
    Require(KORO_Device_Destruct(tree.device));
    expectEnded(2);
    expectEnded(4);
    Require(KORO_System_Destruct(tree.system));
    expectEnded(0);
    expectEnded(1);
}

TEST_F(ModuleNodeMaps, ModuleThatIsOpenedAnewFetchesAnew)
{
    SetURLs({});
    EXPECT_EQ(Count(stream), 0u);
    DescribeStreamBy(Described(""));
    EXPECT_EQ(Count(stream), 0u);
    ReopenStream();
    EXPECT_EQ(Count(Stream()), 1u);
}

} // namespace koro::test
