// MemoryPort: a port on memory that counts its transfers. SmallMap: a node map made of a few elements, connected to
// one.
#pragma once

#include <GenApi/NodeMapFactory.h>
#include <GenICam.h>
#include <functional>
#include <map>
#include <stdint.h>
#include <string>

namespace koro::test
{

class MemoryPort : public GENAPI_NAMESPACE::IPort
{
public:
    void Read(void* buffer, int64_t address, int64_t length) override
    {
        ++reads;
        if (onRead) onRead();
        for (int64_t i = 0; i < length; ++i)
            static_cast<uint8_t*>(buffer)[i] = bytes[address + i];
    }
    void Write(const void* buffer, int64_t address, int64_t length) override
    {
        ++writes;
        if (onWrite) onWrite();
        for (int64_t i = 0; i < length; ++i)
            bytes[address + i] = static_cast<const uint8_t*>(buffer)[i];
    }
    GENAPI_NAMESPACE::EAccessMode GetAccessMode() const override { return mode; }

    std::map<int64_t, uint8_t> bytes; // what was never written is 0
    GENAPI_NAMESPACE::EAccessMode mode = GENAPI_NAMESPACE::RW;
    std::function<void()> onRead;
    std::function<void()> onWrite;
    int reads = 0;
    int writes = 0;
};

// The elements inside a root element, with a port "Device".
inline std::string Described(const std::string& elements)
{
    return "<RegisterDescription ModelName=\"M\" VendorName=\"V\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" "
           "SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"2\" "
           "SubMinorVersion=\"3\" ProductGuid=\"p\" VersionGuid=\"v\" "
           "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">" +
           elements + "<Port Name=\"Device\"/></RegisterDescription>";
}

// What every integer register says, with its address and further children in between.
inline std::string IntReg(const std::string& name, const std::string& address, const std::string& more = "")
{
    return "<IntReg Name=\"" + name + "\"><Address>" + address +
           "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>" + more +
           "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
}

class SmallMap
{
public:
    explicit SmallMap(const std::string& elements)
    {
        GENAPI_NAMESPACE::CNodeMapFactory factory(Described(elements).c_str());
        map = factory.CreateNodeMap();
        map->Connect(&port);
    }
    ~SmallMap() { GENAPI_NAMESPACE::CastToIDestroy(map)->Destroy(); }
    SmallMap(const SmallMap&) = delete;
    SmallMap& operator=(const SmallMap&) = delete;

    GENAPI_NAMESPACE::INode* Node(const char* name) const { return map->GetNode(name); }
    GENAPI_NAMESPACE::CIntegerPtr Integer(const char* name) const { return Node(name); }
    GENAPI_NAMESPACE::CFloatPtr Float(const char* name) const { return Node(name); }
    GENAPI_NAMESPACE::CValuePtr Value(const char* name) const { return Node(name); }
    GENAPI_NAMESPACE::CEnumerationPtr Enumeration(const char* name) const { return Node(name); }

    MemoryPort port;
    GENAPI_NAMESPACE::INodeMap* map;
};

} // namespace koro::test
