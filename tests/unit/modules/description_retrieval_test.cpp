// What is wrong with a URL; at the exports these texts reach nobody.
#include "base/exceptions.h"
#include "gentl/port_url.h"
#include "modules/description_retrieval.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/nodes/open_port.h"

#include <string>

namespace koro::test
{

using namespace internal;

namespace
{

class FetchedDescription : public OpenPort
{
protected:
    // A URL whose text is all that the producer knows.
    std::shared_ptr<PortURL> URL(const std::string& text) const
    {
        producer->Edit([&](scripted::Tree& tree) {
            tree.port.urls.assign(1, {{GenTL::URL_INFO_URL, scripted::Text(text)}});
        });
        return port->URLs()->front();
    }

    void ExpectFailure(const std::string& url, const std::string& text) const
    {
        const auto portURL = URL(url);
        EXPECT_THAT([&] { FetchDescription(*portURL); }, ThrowsExactly<InternalErrorException>(text));
    }
};

} // namespace

TEST_F(FetchedDescription, BytesAreThoseOfTheRegisters)
{
    producer->Edit([](scripted::Tree& tree) { tree.port.registers[0x40000] = "0123456789"; });
    const auto description = FetchDescription(*URL("local:a.xml;40002;5"));
    EXPECT_EQ(std::string(description.data.begin(), description.data.end()), "23456");
    EXPECT_FALSE(description.isZipped);
    EXPECT_EQ(description.filePath, "");
    EXPECT_TRUE(FetchDescription(*URL("local:a.zip;40002;5")).isZipped);
    EXPECT_TRUE(FetchDescription(*URL("local:a.zip.xml;40002;5")).isZipped);
    EXPECT_FALSE(FetchDescription(*URL("local:A.ZIP;40002;5")).isZipped);
    // Of the name alone.
    EXPECT_FALSE(FetchDescription(*URL("local:a.xml;40002;5.zip")).isZipped);
}

TEST_F(FetchedDescription, PartThatCannotBeParsedIsNamed)
{
    ExpectFailure("a.xml;10;20", "Could not parse the port URL scheme (Port-URL: a.xml;10;20)!");
    ExpectFailure("local:a;x;20", "Could not parse the file register address (Port-URL: local:a;x;20)!");
    ExpectFailure("local:a;10", "Could not parse the file register address (Port-URL: local:a;10)!");
    ExpectFailure("local:a;10;x", "Could not parse the file size (Port-URL: local:a;10;x)!");

    producer->SetInfo("GCGetPortURLInfo", GenTL::URL_INFO_FILE_REGISTER_ADDRESS, scripted::UInt64(1));
    ExpectFailure("local:a;10", "Could not parse the file size (Port-URL: local:a;10)!");
    producer->SetInfo("GCGetPortURLInfo", GenTL::URL_INFO_FILE_SIZE, scripted::UInt64(1));
    ExpectFailure("local:a;10", "Could not parse the file name (Port-URL: local:a;10)!");
}

TEST_F(FetchedDescription, SchemeThatIsNotLocalIsRefusedByName)
{
    ExpectFailure("http:a;1;2", "The scheme type 1 (HTTP) is not supported yet (Port-URL: http:a;1;2)!");
    ExpectFailure("file:a;1;2", "The scheme type 2 (File) is not supported yet (Port-URL: file:a;1;2)!");
    producer->SetInfo("GCGetPortURLInfo", GenTL::URL_INFO_SCHEME, scripted::Int32(1000));
    ExpectFailure("local:a;1;2", "The scheme type 1000 (Custom) is not supported yet (Port-URL: local:a;1;2)!");
    producer->SetInfo("GCGetPortURLInfo", GenTL::URL_INFO_SCHEME, scripted::Int32(-7));
    ExpectFailure("local:a;1;2", "The scheme type -7 () is not supported yet (Port-URL: local:a;1;2)!");
}

TEST_F(FetchedDescription, SizeBeyondTheBoundNamesTheBound)
{
    ExpectFailure(
        "local:a;1;10000001", "[Function: GCGetPortURLInfo | Error: 268435457 description bytes exceed the bound of "
                              "268435456]");
}

TEST_F(FetchedDescription, FailureOfTheTransferPasses)
{
    producer->Answer("GCReadPort", GenTL::GC_ERR_ACCESS_DENIED);
    const auto url = URL("local:a;1;2");
    EXPECT_THROW(FetchDescription(*url), BadAccessException);
}

} // namespace koro::test
