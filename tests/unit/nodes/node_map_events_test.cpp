#include "gentl/port.h"
#include "modules/event.h"
#include "modules/event_controller.h"
#include "nodes/event_message.h"
#include "nodes/node_map.h"
#include "tests/support/event_messages.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/modules/open_objects.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace koro::test
{

using namespace GenTL;
using namespace internal;

namespace
{

const std::string description =
    "<RegisterDescription ModelName=\"Test\" VendorName=\"ZVR\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" "
    "SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" "
    "ProductGuid=\"\" VersionGuid=\"\" xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">"
    "<Port Name=\"One\"><EventID>9001</EventID></Port><Port Name=\"Device\"/></RegisterDescription>";

class EventsOfDevices : public testing::Test
{
protected:
    OpenObjects objects;
    std::shared_ptr<EventController> controller = objects.device->EnableEvents(EVENT_REMOTE_DEVICE);
    std::shared_ptr<NodeMap> map = std::make_shared<NodeMap>(
        objects.remoteDevice->Port(), NodeMapDescription{.data = {description.begin(), description.end()}});
    std::shared_ptr<Event> event = Take();

    std::shared_ptr<Event> Take() const
    {
        objects.producer->Fire("if0-dev0", EVENT_REMOTE_DEVICE, GEVEvent(0x9001, "data"));
        return controller->WaitForEvent(0);
    }
    void ExpectExpired() const
    {
        const auto expired = ThrowsExactly<InternalErrorException>("Pointer has expired!");
        EXPECT_THAT([&] { map->HasEventSupportedData(*event); }, expired);
        EXPECT_THAT([&] { map->UpdateEventNodes(*event); }, expired);
    }
};

} // namespace

TEST_F(EventsOfDevices, EventIsDeliveredToThePortOfItsId)
{
    EXPECT_TRUE(map->HasEventSupportedData(*event));
    map->UpdateEventNodes(*event);
    auto& port = dynamic_cast<GENAPI_NAMESPACE::IPort&>(*map->GenApiNodeMap()->GetNode("One"));
    std::string data(4, ' ');
    port.Read(data.data(), 16, 4);
    EXPECT_EQ(data, "data");
}

TEST_F(EventsOfDevices, EventWhoseControllerHasGoneHasExpired)
{
    controller.reset();
    ExpectExpired();
}

TEST_F(EventsOfDevices, EventWhoseModuleHasGoneHasExpired)
{
    EXPECT_TRUE(map->HasEventSupportedData(*event)); // makes the adapter, which needs the device
    objects.device.reset();
    ExpectExpired();
}

TEST(EventMessage, SizeOfMoreThan32BitsIsTooLarge)
{
    EXPECT_EQ(EventMessageSize(0), 0u);
    EXPECT_EQ(EventMessageSize(0xffffffff), 0xffffffffu);
    const auto tooLarge = ThrowsExactly<InternalErrorException>("Event size is too large!");
    EXPECT_THAT([] { EventMessageSize(0x100000000); }, tooLarge);
    EXPECT_THAT([] { EventMessageSize(SIZE_MAX); }, tooLarge);
}

} // namespace koro::test
