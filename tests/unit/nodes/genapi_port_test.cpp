#include "base/exceptions.h"
#include "gentl/port.h"
#include "nodes/genapi_port.h"
#include "tests/support/scripted_producer.h"
#include "tests/support/throws_exactly.h"

#include <GenApi/IPort.h>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace koro::test
{

using namespace internal;

namespace
{

using Strings = std::vector<std::string>;

class NodesRoad : public testing::Test
{
protected:
    NodesRoad()
    {
        proxy->GCInitLib();
        proxy->TLOpen(&handle);
        road = std::make_unique<GenApiPort>(std::make_shared<Port>(handle, proxy));
        producer->ClearJournal();
    }
    ~NodesRoad() override { proxy->GCCloseLib(); }

    void SetFlags(bool readable, bool writable, bool unavailable, bool unimplemented) const
    {
        const auto set = [&](std::int32_t command, bool value) {
            producer->SetInfo("GCGetPortInfo", command, scripted::Bool8(value));
        };
        set(GenTL::PORT_INFO_ACCESS_READ, readable);
        set(GenTL::PORT_INFO_ACCESS_WRITE, writable);
        set(GenTL::PORT_INFO_ACCESS_NA, unavailable);
        set(GenTL::PORT_INFO_ACCESS_NI, unimplemented);
    }

    const ScriptedProducer producer;
    const std::shared_ptr<const GenTLProxy> proxy = std::make_shared<const GenTLProxy>(producer.Path());
    GenTL::TL_HANDLE handle = nullptr;
    std::unique_ptr<GenApiPort> road;
};

} // namespace

TEST_F(NodesRoad, ReadsAndWritesGoToThePortAsTheyAre)
{
    std::vector<std::uint8_t> bytes{'a', 'b', 'c'};
    road->Write(bytes.data(), 8, 3);
    std::vector<std::uint8_t> read(3);
    road->Read(read.data(), 8, 3);

    EXPECT_EQ(read, bytes);
    EXPECT_EQ(producer->Journal(), (Strings{"GCWritePort(system, 8, 3)", "GCReadPort(system, 8, 3)"}));
}

TEST_F(NodesRoad, AddressesUseAll64Bits)
{
    std::uint8_t byte = 0;
    EXPECT_ANY_THROW(road->Read(&byte, -2, 1));
    EXPECT_EQ(producer->Journal().front(), "GCReadPort(system, 18446744073709551614, 1)");
}

TEST_F(NodesRoad, NegativeLengthIsRefusedWithoutACall)
{
    std::uint8_t byte = 0;
    EXPECT_THROW(road->Read(&byte, 0, -1), InvalidArgumentException);
    EXPECT_THROW(road->Write(&byte, 0, -1), InvalidArgumentException);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(NodesRoad, ExceptionsOfThePortPassUnchanged)
{
    std::uint8_t byte = 0;
    producer->Answer("GCReadPort", GenTL::GC_ERR_ACCESS_DENIED);
    EXPECT_THAT(
        [&] { road->Read(&byte, 0, 1); },
        ThrowsExactly<BadAccessException>("[Function: GCReadPort | Error-Code: -1005 (GC_ERR_ACCESS_DENIED) | "
                                          "Error-Text: scripted failure of GCReadPort]"));
    producer->SetInfo("GCGetPortInfo", GenTL::PORT_INFO_ACCESS_READ, scripted::Failing(GenTL::GC_ERR_IO));
    EXPECT_THROW(road->GetAccessMode(), IOException);
}

TEST_F(NodesRoad, NameIsThatOfThePort)
{
    EXPECT_EQ(road->Name(), "TLPort");
}

TEST_F(NodesRoad, AccessModeFollowsTheFourFlags)
{
    for (int flags = 0; flags < 16; ++flags)
    {
        const bool readable = flags & 1;
        const bool writable = flags & 2;
        const bool unavailable = flags & 4;
        const bool unimplemented = flags & 8;
        SCOPED_TRACE(flags);
        SetFlags(readable, writable, unavailable, unimplemented);
        const int expected = readable && writable ? 4
                             : readable           ? 3
                             : writable           ? 2
                             : unimplemented      ? 0
                             : unavailable        ? 1
                                                  : 5;
        EXPECT_EQ(static_cast<int>(road->GetAccessMode()), expected);
    }
}

TEST_F(NodesRoad, ReadableAndWritablePortIsSoEvenIfItCallsItselfUnimplemented)
{
    SetFlags(true, true, false, true);
    EXPECT_EQ(road->GetAccessMode(), GENAPI_NAMESPACE::RW);
}

TEST_F(NodesRoad, AccessModeAlwaysAsksForReadingAndWriting)
{
    SetFlags(true, false, false, false);
    road->GetAccessMode();
    EXPECT_EQ(
        producer->Journal(), (Strings{
                                 "GCGetPortInfo(system, 7, size)", "GCGetPortInfo(system, 7, data)",
                                 "GCGetPortInfo(system, 8, size)", "GCGetPortInfo(system, 8, data)"}));
}

} // namespace koro::test
