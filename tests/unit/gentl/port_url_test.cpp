#include "base/exceptions.h"
#include "gentl/port.h"
#include "gentl/port_url.h"
#include "tests/support/scripted_producer.h"
#include "tests/support/throws_exactly.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace koro::test
{

using namespace internal;

namespace
{

class PortURLs : public testing::Test
{
protected:
    PortURLs()
    {
        proxy->GCInitLib();
        proxy->TLOpen(&handle);
        port = std::make_shared<Port>(handle, proxy);
    }
    ~PortURLs() override { proxy->GCCloseLib(); }

    const ScriptedProducer producer;
    const std::shared_ptr<const GenTLProxy> proxy = std::make_shared<const GenTLProxy>(producer.Path());
    GenTL::TL_HANDLE handle = nullptr;
    std::shared_ptr<Port> port;
};

} // namespace

TEST_F(PortURLs, URLWhosePortHasGoneSaysSoAndAsksNothing)
{
    const auto url = port->URLs()->front();
    EXPECT_EQ(url->ParentPort(), port);
    port.reset();
    producer->ClearJournal();

    const std::vector<std::pair<const char*, std::function<void()>>> operations = {
        {"URL", [&] { url->URL(); }},
        {"Scheme", [&] { url->Scheme(); }},
        {"FileName", [&] { url->FileName(); }},
        {"FileRegisterAddress", [&] { url->FileRegisterAddress(); }},
        {"FileSize", [&] { url->FileSize(); }},
        {"FileSHA1Hash", [&] { url->FileSHA1Hash(); }},
        {"FileVersionMajor", [&] { url->FileVersionMajor(); }},
        {"FileVersionMinor", [&] { url->FileVersionMinor(); }},
        {"FileVersionSubminor", [&] { url->FileVersionSubminor(); }},
        {"FileSchemaVersionMajor", [&] { url->FileSchemaVersionMajor(); }},
        {"FileSchemaVersionMinor", [&] { url->FileSchemaVersionMinor(); }},
        {"Info", [&] { url->Info(0); }},
        {"ParentPort", [&] { url->ParentPort(); }},
    };
    for (const auto& [name, operation] : operations)
    {
        SCOPED_TRACE(name);
        EXPECT_THAT(operation, ThrowsExactly<InternalErrorException>("Pointer has expired!"));
    }
    EXPECT_EQ(producer->Journal(), std::vector<std::string>{});
}

TEST_F(PortURLs, QueryHoldsThePortForItsLength)
{
    const auto url = port->URLs()->front();
    const std::weak_ptr<Port> weakPort = port;
    bool heldMeanwhile = false;
    producer->OnEntry("GCGetPortURLInfo", [&] {
        port.reset();
        heldMeanwhile = !weakPort.expired();
    });

    EXPECT_THAT([&] { url->URL(); }, ThrowsExactly<InternalErrorException>("Pointer has expired!"));
    EXPECT_TRUE(heldMeanwhile);
    EXPECT_TRUE(weakPort.expired());
}

TEST_F(PortURLs, URLKeepsTheProducerLoadedAndNotThePort)
{
    const auto url = port->URLs()->front();
    const std::weak_ptr<Port> weakPort = port;
    port.reset();
    EXPECT_TRUE(weakPort.expired());
}

} // namespace koro::test
