// GenApiPort: gives the nodes of a map access to the registers of a Port.
//
// Owned by the node map that is connected to it; shares the Port. It has no cache and no lock: the map decides which
// threads call it. Exceptions of the Port pass unchanged through the nodes.
#pragma once

#include <GenApi/IPort.h>
#include <memory>
#include <stdint.h>
#include <string>

namespace koro::internal
{

class Port;

class GenApiPort : public GENAPI_NAMESPACE::IPort
{
public:
    explicit GenApiPort(std::shared_ptr<Port> port);
    ~GenApiPort() override;

    // The name of the port node to which the map connects this port.
    std::string Name() const;

    // Addresses use all 64 bits: a negative one is the upper half of the address space. A negative length is refused.
    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;
    // A port that is available but neither readable nor writable is intentionally _UndefinedAccesMode.
    GENAPI_NAMESPACE::EAccessMode GetAccessMode() const override;

private:
    std::shared_ptr<Port> port;
};

} // namespace koro::internal
