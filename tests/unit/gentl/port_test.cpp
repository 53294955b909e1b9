#include "base/exceptions.h"
#include "gentl/port.h"
#include "tests/support/scripted_producer.h"
#include "tests/support/throws_exactly.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace koro::test
{

using namespace internal;

namespace
{

using Strings = std::vector<std::string>;
using Bytes = std::vector<std::uint8_t>;

// The port of an open system, without the module above it.
class PortRoad : public testing::Test
{
protected:
    PortRoad()
    {
        proxy->GCInitLib();
        proxy->TLOpen(&handle);
        producer->ClearJournal();
        port = std::make_shared<Port>(handle, proxy);
    }
    ~PortRoad() override { proxy->GCCloseLib(); }

    void SetRegisters(const std::string& bytes) const
    {
        producer->Edit([&](scripted::Tree& tree) { tree.port.registers[0] = bytes; });
    }

    const ScriptedProducer producer;
    const std::shared_ptr<const GenTLProxy> proxy = std::make_shared<const GenTLProxy>(producer.Path());
    GenTL::TL_HANDLE handle = nullptr;
    std::shared_ptr<Port> port;
};

} // namespace

TEST_F(PortRoad, MakingAPortMakesNoProducerCallAndKeepsTheHandle)
{
    EXPECT_EQ(port->Handle(), handle);
    EXPECT_EQ(producer->Journal(), Strings{});
    port.reset();
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(PortRoad, ReadOfASizeGivesSoManyBytes)
{
    SetRegisters("0123456789");
    EXPECT_EQ(port->Read(2, 3), (Bytes{'2', '3', '4'}));
    EXPECT_EQ(producer->Journal().front(), "GCReadPort(system, 2, 3)");
}

TEST_F(PortRoad, ReadOfASizeKeepsItsLengthWhateverTheProducerStores)
{
    producer->Answer("GCReadPort", GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(port->Read(0, 5), Bytes(5, 0));
}

TEST_F(PortRoad, WriteOfBytesWritesThemAll)
{
    SetRegisters("0123456789");
    port->Write(4, {'a', 'b'});
    EXPECT_EQ(port->Read(3, 4), (Bytes{'3', 'a', 'b', '6'}));
}

TEST_F(PortRoad, SizeBeyondAllMemoryIsAnInternalError)
{
    EXPECT_THROW(port->Read(0, std::numeric_limits<std::size_t>::max()), InternalErrorException);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(PortRoad, StandardExceptionsOfTheProducerAreInternalErrors)
{
    for (const auto* function : {"GCReadPort", "GCWritePort", "GCGetPortInfo", "GCGetNumPortURLs"})
        producer->OnEntry(function, [] { throw std::out_of_range("of the producer"); });
    const auto internalError = ThrowsExactly<InternalErrorException>("of the producer");
    std::uint8_t byte = 0;

    EXPECT_THAT([&] { port->Read(0, 1); }, internalError);
    EXPECT_THAT([&] { port->Read(&byte, 0, 1); }, internalError);
    EXPECT_THAT([&] { port->Write(0, {1}); }, internalError);
    EXPECT_THAT([&] { port->Write(&byte, 0, 1); }, internalError);
    EXPECT_THAT([&] { port->ID(); }, internalError);
    EXPECT_THAT([&] { port->IsReadable(); }, internalError);
    EXPECT_THAT([&] { port->DataEndianness(); }, internalError);
    EXPECT_THAT([&] { port->Info(0); }, internalError);
    EXPECT_THAT([&] { port->URLs(); }, internalError);
}

TEST_F(PortRoad, URLsOfAPortThatNobodySharesAreAnInternalError)
{
    Port alone(handle, proxy);
    EXPECT_THROW(alone.URLs(), InternalErrorException);
}

TEST_F(PortRoad, URLsAreTheSameObjectsAtEachRequest)
{
    producer->Edit([](scripted::Tree& tree) { tree.port.urls.resize(3, tree.port.urls[0]); });
    const auto urls = port->URLs();
    EXPECT_EQ(urls->size(), 3u);
    EXPECT_EQ(*port->URLs(), *urls);
    EXPECT_EQ(producer->Journal(), Strings{"GCGetNumPortURLs(system)"});
}

TEST_F(PortRoad, ProducerOfUnknownVersionWithoutURLsIsRefusedByName)
{
    const ScriptedProducer core("scripted_no_version_core_only");
    const auto coreProxy = std::make_shared<const GenTLProxy>(core.Path());
    const auto corePort = std::make_shared<Port>(nullptr, coreProxy);

    EXPECT_THAT(
        [&] { corePort->URLs(); }, ThrowsExactly<Exception>(
                                       "[Function: GCGetNumPortURLs | Error: The instrumented TL (" + core.Path() +
                                       ") does not implement GCGetNumPortURLs()!]"));
}

} // namespace koro::test
