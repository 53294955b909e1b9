#include "capi/child_descriptors.h"
#include "modules/interface_descriptor.h"
#include "modules/producer_library.h"
#include "modules/system.h"
#include "modules/system_descriptor.h"
#include "tests/support/scripted_producer.h"

#include <gtest/gtest.h>

namespace koro::internal
{

namespace
{

class ChildDescriptors : public testing::Test
{
protected:
    ChildDescriptors() { InitializeLibrary(); }
    ~ChildDescriptors() override { CloseLibrary(); }

    const test::ScriptedProducer producer;
};

} // namespace

TEST_F(ChildDescriptors, ChildThatWasLostBeforeItsEntryHasAnInvalidHandle)
{
    const auto library = std::make_shared<ProducerLibrary>(producer.Path());
    const auto system = library->GetSystem()->OpenSystem();
    system->UpdateChildren(0);
    const auto lost = system->Children()->at(0);
    const auto stayed = system->Children()->at(1);
    producer->Edit([](scripted::Tree& tree) { tree.interfaces.erase(tree.interfaces.begin()); });
    producer->SetChanged("TLUpdateInterfaceList", 1);
    system->UpdateChildren(0);

    EXPECT_EQ(Find(EnterDescriptor(system, lost)), nullptr);
    EXPECT_EQ(Find(EnterDescriptor(system, stayed))->Get(), stayed);
}

} // namespace koro::internal
