#include "tests/boundary/info_getters.h"
#include "tests/boundary/tree_test.h"

#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;
using Bytes = std::vector<std::uint8_t>;

class Port : public TreeTest
{
protected:
    Port() { producer->ClearJournal(); }

    void SetFlag(std::int32_t command, bool value) const
    {
        producer->SetInfo("GCGetPortInfo", command, scripted::Bool8(value));
    }

    void ExpectFlag(
        std::int32_t command, const char* commandName, const std::string& parameter,
        ScalarExport<KORO_PortHandle, KORO_Bool8> function, bool inverted) const
    {
        for (const bool flag : {false, true})
        {
            ExpectNumberGetter<KORO_PortHandle, KORO_Bool8>(
                producer, {"GCGetPortInfo", command, commandName}, scripted::Bool8(flag), "11 (INFO_DATATYPE_BOOL8)",
                parameter, flag != inverted, function, port);
        }
    }

    void SetRegisters(const std::string& bytes) const
    {
        producer->Edit(
            [&](scripted::Tree& edited) { edited.interfaces[0]->devices[0]->streams[0]->port.registers[0] = bytes; });
    }

    std::string Registers() const
    {
        std::string bytes;
        producer->Edit(
            [&](scripted::Tree& edited) { bytes = edited.interfaces[0]->devices[0]->streams[0]->port.registers[0]; });
        return bytes;
    }

    void SetURLs(std::size_t count) const
    {
        producer->Edit([&](scripted::Tree& edited) {
            auto& urls = edited.interfaces[0]->devices[0]->streams[0]->port.urls;
            urls.resize(count, urls.empty() ? scripted::Infos() : urls[0]);
        });
    }

    const KORO_PortHandle port =
        Get<KORO_PortHandle>(KORO_Module_GetPort, Get<KORO_ModuleHandle>(KORO_DataStream_ToModule, tree.stream));
};

} // namespace

TEST_F(Port, TextsComeFromThePortsInformation)
{
    ExpectTextGetters(
        producer, "GCGetPortInfo", port,
        {{0, "PORT_INFO_ID", "id", KORO_Port_GetID},
         {1, "PORT_INFO_VENDOR", "vendorName", KORO_Port_GetVendorName},
         {2, "PORT_INFO_MODEL", "modelName", KORO_Port_GetModelName},
         {3, "PORT_INFO_TLTYPE", "tlType", KORO_Port_GetTLType},
         {4, "PORT_INFO_MODULE", "moduleName", KORO_Port_GetModuleName},
         {11, "PORT_INFO_VERSION", "version", KORO_Port_GetVersion},
         {12, "PORT_INFO_PORTNAME", "name", KORO_Port_GetName}});
}

TEST_F(Port, RawInformationComesFromThePortsInformation)
{
    ExpectRawInfo(producer, "GCGetPortInfo", KORO_Port_GetInfo, port);
}

TEST_F(Port, FlagsComeFromThePortsInformationAndTwoOfThemAreInverted)
{
    ExpectFlag(7, "PORT_INFO_ACCESS_READ", "isReadable", KORO_Port_GetIsReadable, false);
    ExpectFlag(8, "PORT_INFO_ACCESS_WRITE", "isWritable", KORO_Port_GetIsWritable, false);
    ExpectFlag(9, "PORT_INFO_ACCESS_NA", "isAvailable", KORO_Port_GetIsAvailable, true);
    ExpectFlag(10, "PORT_INFO_ACCESS_NI", "isImplemented", KORO_Port_GetIsImplemented, true);
}

TEST_F(Port, FlagOfAnyNumberButZeroIsTrue)
{
    producer->SetInfo("GCGetPortInfo", 7, scripted::Bytes(GenTL::INFO_DATATYPE_BOOL8, "\x80"));
    EXPECT_EQ(Get<KORO_Bool8>(KORO_Port_GetIsReadable, port), 1);
}

TEST_F(Port, EndiannessTellsOnlyWhetherItIsKnown)
{
    const auto endianness = [&](bool little, bool big) {
        SetFlag(GenTL::PORT_INFO_LITTLE_ENDIAN, little);
        SetFlag(GenTL::PORT_INFO_BIG_ENDIAN, big);
        return Get<std::int32_t>(KORO_Port_GetDataEndianness, port);
    };
    EXPECT_EQ(endianness(true, false), 1);
    EXPECT_EQ(endianness(false, true), 1);
    EXPECT_EQ(endianness(true, true), 1);
    EXPECT_EQ(endianness(false, false), 0);
    EXPECT_EQ(Outcome(KORO_Port_GetDataEndianness(port, nullptr)), NullPointer("dataEndianness"));
}

TEST_F(Port, EndiannessAsksForLittleFirstAndForBigOnlyIfItIsNot)
{
    Get<std::int32_t>(KORO_Port_GetDataEndianness, port);
    const Strings little{"GCGetPortInfo(if0-dev0-stream0, 5, size)", "GCGetPortInfo(if0-dev0-stream0, 5, data)"};
    EXPECT_EQ(producer->Journal(), little);

    SetFlag(GenTL::PORT_INFO_LITTLE_ENDIAN, false);
    producer->ClearJournal();
    Get<std::int32_t>(KORO_Port_GetDataEndianness, port);
    Strings both = little;
    both.push_back("GCGetPortInfo(if0-dev0-stream0, 6, size)");
    both.push_back("GCGetPortInfo(if0-dev0-stream0, 6, data)");
    EXPECT_EQ(producer->Journal(), both);
}

TEST_F(Port, FailingEndiannessIsToldOfTheQueryThatFailed)
{
    std::int32_t output = 0;
    producer->SetInfo("GCGetPortInfo", 5, scripted::Failing(GenTL::GC_ERR_NOT_IMPLEMENTED));
    EXPECT_EQ(
        Outcome(KORO_Port_GetDataEndianness(port, &output)),
        InfoFailure({"GCGetPortInfo", 5, "PORT_INFO_LITTLE_ENDIAN"}, ProducerErrorOf(GenTL::GC_ERR_NOT_IMPLEMENTED)));
    SetFlag(5, false);
    producer->SetInfo("GCGetPortInfo", 6, scripted::Failing(GenTL::GC_ERR_IO));
    EXPECT_EQ(
        Outcome(KORO_Port_GetDataEndianness(port, &output)),
        InfoFailure({"GCGetPortInfo", 6, "PORT_INFO_BIG_ENDIAN"}, ProducerErrorOf(GenTL::GC_ERR_IO)));
}

TEST_F(Port, ReadIsOneCallIntoTheCallersBuffer)
{
    SetRegisters("0123456789");
    Bytes bytes(4, '#');

    EXPECT_EQ(Outcome(KORO_Port_Read(port, 3, bytes.data(), 3)), Error{});
    EXPECT_EQ(bytes, (Bytes{'3', '4', '5', '#'}));
    EXPECT_EQ(producer->Journal(), Strings{"GCReadPort(if0-dev0-stream0, 3, 3)"});
}

TEST_F(Port, WriteIsOneCallFromTheCallersBuffer)
{
    SetRegisters("0123456789");
    const Bytes bytes{'a', 'b', 'c', 'd'};

    EXPECT_EQ(Outcome(KORO_Port_Write(port, 2, bytes.data(), 3)), Error{});
    EXPECT_EQ(Registers(), "01abc56789");
    EXPECT_EQ(producer->Journal(), Strings{"GCWritePort(if0-dev0-stream0, 2, 3)"});
}

TEST_F(Port, LargeTransferAtAnyAddressIsNotSplit)
{
    const std::uint64_t high = 0xFFFFFFFFFFFF0001;
    producer->Edit([&](scripted::Tree& edited) {
        edited.interfaces[0]->devices[0]->streams[0]->port.registers[high] = std::string(0xFFFE, 'x');
    });
    Bytes bytes(0xFFFE);

    EXPECT_EQ(Outcome(KORO_Port_Read(port, high, bytes.data(), bytes.size())), Error{});
    EXPECT_EQ(bytes, Bytes(0xFFFE, 'x'));
    EXPECT_EQ(Outcome(KORO_Port_Write(port, high, bytes.data(), bytes.size())), Error{});
    EXPECT_EQ(
        producer->Journal(), (Strings{
                                 "GCReadPort(if0-dev0-stream0, 18446744073709486081, 65534)",
                                 "GCWritePort(if0-dev0-stream0, 18446744073709486081, 65534)"}));
}

TEST_F(Port, TransferOfNothingStillReachesTheProducer)
{
    std::uint8_t byte = '#';
    EXPECT_EQ(Outcome(KORO_Port_Read(port, 5, &byte, 0)), Error{});
    EXPECT_EQ(Outcome(KORO_Port_Write(port, 6, &byte, 0)), Error{});
    EXPECT_EQ(byte, '#');
    EXPECT_EQ(
        producer->Journal(), (Strings{"GCReadPort(if0-dev0-stream0, 5, 0)", "GCWritePort(if0-dev0-stream0, 6, 0)"}));
}

TEST_F(Port, TransferTestsHandleThenBuffer)
{
    std::uint8_t byte = 0;
    EXPECT_EQ(Outcome(KORO_Port_Read(nullptr, 0, nullptr, 1)), InvalidHandle("portHandle"));
    EXPECT_EQ(Outcome(KORO_Port_Read(port, 0, nullptr, 1)), NullPointer("bytesToRead"));
    EXPECT_EQ(Outcome(KORO_Port_Read(port, 0, nullptr, 0)), NullPointer("bytesToRead"));
    EXPECT_EQ(Outcome(KORO_Port_Write(nullptr, 0, nullptr, 1)), InvalidHandle("portHandle"));
    EXPECT_EQ(Outcome(KORO_Port_Write(port, 0, nullptr, 1)), NullPointer("bytesToWrite"));
    EXPECT_EQ(Outcome(KORO_Port_Write(nullptr, 0, &byte, 1)), InvalidHandle("portHandle"));
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(Port, SuccessOfAShortTransferIsSuccess)
{
    SetRegisters("0123456789");
    producer->SetCount("GCReadPort", 2);
    producer->SetCount("GCWritePort", 3);
    Bytes bytes{'k', 'e', 'p', 't'};

    EXPECT_EQ(Outcome(KORO_Port_Read(port, 0, bytes.data(), bytes.size())), Error{});
    EXPECT_EQ(bytes, (Bytes{'0', '1', 'p', 't'}));
    EXPECT_EQ(Outcome(KORO_Port_Write(port, 5, bytes.data(), bytes.size())), Error{});
    EXPECT_EQ(Registers(), "0123401p89");
    EXPECT_EQ(
        producer->Journal(), (Strings{"GCReadPort(if0-dev0-stream0, 0, 4)", "GCWritePort(if0-dev0-stream0, 5, 4)"}));
}

TEST_F(Port, EveryCodeOfAFailedTransferHasItsReturnCode)
{
    std::uint8_t byte = 0;
    for (const auto& error : producerErrors)
    {
        producer->AnswerOnce("GCReadPort", error.code);
        EXPECT_EQ(Outcome(KORO_Port_Read(port, 0, &byte, 1)), CallFailure("GCReadPort", error));
        producer->AnswerOnce("GCWritePort", error.code);
        EXPECT_EQ(Outcome(KORO_Port_Write(port, 0, &byte, 1)), CallFailure("GCWritePort", error));
    }
}

TEST_F(Port, TimeoutOfATransferIsNoTimeout)
{
    std::uint8_t byte = 0;
    producer->AnswerOnce("GCReadPort", GenTL::GC_ERR_TIMEOUT);
    EXPECT_EQ(KORO_Port_Read(port, 0, &byte, 1), KORO_RETURN_CODE_ERROR);
    producer->AnswerOnce("GCWritePort", GenTL::GC_ERR_TIMEOUT);
    EXPECT_EQ(KORO_Port_Write(port, 0, &byte, 1), KORO_RETURN_CODE_ERROR);
}

TEST_F(Port, CodeOfTheLastErrorDecidesAboutAFailedTransfer)
{
    std::uint8_t byte = 0;
    producer->SetLastError({.code = GenTL::GC_ERR_ABORT, .text = "stale"});
    producer->AnswerOnce("GCReadPort", GenTL::GC_ERR_IO);

    EXPECT_EQ(
        Outcome(KORO_Port_Read(port, 0, &byte, 1)),
        (Error{
            KORO_RETURN_CODE_ABORTED,
            "[Function: GCReadPort | Error-Code: -1012 (GC_ERR_ABORT) | Error-Text: stale]"}));
}

TEST_F(Port, AddressWithoutRegisterIsInvalid)
{
    std::uint8_t byte = 0;
    EXPECT_EQ(
        Outcome(KORO_Port_Read(port, 0x5000, &byte, 1)),
        CallFailure("GCReadPort", ProducerErrorOf(GenTL::GC_ERR_INVALID_ADDRESS)));
    EXPECT_EQ(KORO_Port_Write(port, 63, &byte, 2), KORO_RETURN_CODE_INVALID_ADDRESS);
}

TEST_F(Port, StackedFunctionsAreNeverCalled)
{
    Bytes bytes(64);
    Require(KORO_Port_Read(port, 0, bytes.data(), bytes.size()));
    Require(KORO_Port_Write(port, 0, bytes.data(), bytes.size()));
    EXPECT_EQ(CallsOf(producer->Journal(), {"GCReadPortStacked", "GCWritePortStacked"}), Strings{});
}

TEST_F(Port, URLsAreReadFromTheProducerOnce)
{
    ExpectScalarOut<KORO_PortHandle, std::size_t>("numUrls", 1, KORO_Port_GetNumURLs, port);
    const auto url = Get<KORO_PortURLHandle>(KORO_Port_GetURL, port, std::size_t{0});
    EXPECT_EQ(producer->Journal(), Strings{"GCGetNumPortURLs(if0-dev0-stream0)"});

    SetURLs(3);
    EXPECT_EQ(Get<std::size_t>(KORO_Port_GetNumURLs, port), 1u);
    EXPECT_EQ(Get<KORO_PortURLHandle>(KORO_Port_GetURL, port, std::size_t{0}), url);
    EXPECT_EQ(producer->Journal(), Strings{"GCGetNumPortURLs(if0-dev0-stream0)"});
}

TEST_F(Port, ListingOfURLsThatFailedIsTriedAgain)
{
    producer->AnswerOnce("GCGetNumPortURLs", GenTL::GC_ERR_BUSY);
    std::size_t count = 0;
    EXPECT_EQ(
        Outcome(KORO_Port_GetNumURLs(port, &count)),
        CallFailure("GCGetNumPortURLs", ProducerErrorOf(GenTL::GC_ERR_BUSY)));
    EXPECT_EQ(Outcome(KORO_Port_GetNumURLs(port, &count)), Error{});
    EXPECT_EQ(count, 1u);
}

TEST_F(Port, PortWithoutURLsHasNoneAtAnyIndex)
{
    SetURLs(0);
    KORO_PortURLHandle url = nullptr;
    EXPECT_EQ(Get<std::size_t>(KORO_Port_GetNumURLs, port), 0u);
    EXPECT_EQ(Outcome(KORO_Port_GetURL(port, 0, &url)), outOfRange);
    EXPECT_EQ(Outcome(KORO_Port_GetURL(port, SIZE_MAX, &url)), outOfRange);
    EXPECT_EQ(url, nullptr);
}

TEST_F(Port, URLTestsHandleThenPointerThenIndex)
{
    KORO_PortURLHandle url = nullptr;
    EXPECT_EQ(Outcome(KORO_Port_GetURL(nullptr, 0, nullptr)), InvalidHandle("portHandle"));
    EXPECT_EQ(Outcome(KORO_Port_GetURL(port, 9, nullptr)), NullPointer("portUrlHandle"));
    EXPECT_EQ(Outcome(KORO_Port_GetURL(port, 1, &url)), outOfRange);
}

TEST(PortOfAnOldProducer, LacksURLsAndSaysSo)
{
    const ScriptedProducer producer("scripted_1_0");
    const KoroLibrary library;
    const Error lacking{
        KORO_RETURN_CODE_ERROR, "[Function: GCGetNumPortURLs | Error: The instrumented TL (" + producer.Path() +
                                    ") does not implement GCGetNumPortURLs()!]"};

    KORO_ProducerLibraryHandle file = nullptr;
    Require(KORO_ProducerLibrary_Construct(producer.Path().c_str(), producer.Path().size() + 1, &file));
    const auto system = Get<KORO_SystemHandle>(
        KORO_SystemDescriptor_OpenSystem, Get<KORO_SystemDescriptorHandle>(KORO_ProducerLibrary_GetSystem, file));
    const auto port = Get<KORO_PortHandle>(KORO_Module_GetPort, Get<KORO_ModuleHandle>(KORO_System_ToModule, system));
    std::size_t count = 0;
    EXPECT_EQ(Outcome(KORO_Port_GetNumURLs(port, &count)), lacking);

    // An opening looks for the descriptions of the device, and goes on without them.
    Require(KORO_System_UpdateInterfaces(system, 0));
    const auto interface = Get<KORO_InterfaceHandle>(
        KORO_InterfaceDescriptor_OpenInterface,
        Get<KORO_InterfaceDescriptorHandle>(KORO_System_GetInterface, system, std::size_t{0}));
    Require(KORO_Interface_UpdateDevices(interface, 0));
    const auto descriptor = Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, interface, std::size_t{0});
    KORO_DeviceHandle device = nullptr;
    EXPECT_EQ(Outcome(KORO_DeviceDescriptor_OpenDevice(descriptor, OpenTree::exclusiveAccess, &device)), Error{});
    EXPECT_EQ(producer->Open(), (Strings{"if0", "if0-dev0", "system"}));
}

} // namespace koro::test
