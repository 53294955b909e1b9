// OpenPort: the port "TLPort" of an open system, without the module above it, and node maps over it.
#pragma once

#include "gentl/port.h"
#include "nodes/node_map.h"
#include "tests/support/scripted_producer.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace koro::test
{

class OpenPort : public testing::Test
{
protected:
    OpenPort()
    {
        proxy->GCInitLib();
        proxy->TLOpen(&systemHandle);
        port = std::make_shared<internal::Port>(systemHandle, proxy);
    }
    ~OpenPort() override { proxy->GCCloseLib(); }

    static std::string Described(const std::string& nodes)
    {
        return "<RegisterDescription ModelName=\"Test\" VendorName=\"ZVR\" StandardNameSpace=\"None\" "
               "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" "
               "MinorVersion=\"0\" SubMinorVersion=\"0\" ProductGuid=\"\" VersionGuid=\"\" "
               "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">" +
               nodes + "<Port Name=\"TLPort\"/></RegisterDescription>";
    }
    static internal::NodeMapDescription DescriptionOf(const std::string& nodes)
    {
        const std::string text = Described(nodes);
        return {.data = {text.begin(), text.end()}};
    }
    std::shared_ptr<internal::NodeMap> MapOf(const std::string& nodes) const
    {
        return std::make_shared<internal::NodeMap>(port, DescriptionOf(nodes));
    }

    const ScriptedProducer producer;
    const std::shared_ptr<const internal::GenTLProxy> proxy =
        std::make_shared<const internal::GenTLProxy>(producer.Path());
    GenTL::TL_HANDLE systemHandle = nullptr;
    std::shared_ptr<internal::Port> port;
};

} // namespace koro::test
