// RegisterPart: the address and the bytes of a register; a part of every node with the register interface.
// RegisterOf<Base>: adds the interface to a node class.
#pragma once

#include "nodes/node_inline.h"
#include "nodes/value_node.h"

#include <GenApi/IRegister.h>

namespace GENAPI_NAMESPACE::runtime
{

class PortNode;

class RegisterPart
{
public:
    explicit RegisterPart(Node& owner) : node(owner) {}
    ~RegisterPart();
    RegisterPart(const RegisterPart&) = delete;
    RegisterPart& operator=(const RegisterPart&) = delete;

    void Resolve();
    // The sum of all address parts. With `verify` each part is checked against its limits.
    int64_t Address(ReadOptions options = {});
    int64_t Length(bool verify = false);
    // The access mode as restricted by the port and the nodes that determine the address.
    EAccessMode LinkedMode() const;
    // The AccessMode of the description.
    EAccessMode OwnMode() const;
    ECachingMode Caching(ECachingMode absent) const;
    // Reads the first `count` bytes; from the cache, unless it is ignored, off or empty.
    void ReadBytes(uint8_t* bytes, int64_t count, ReadOptions options);
    void WriteBytes(const uint8_t* bytes, int64_t count, bool verify);
    // Discards the cached bytes and address.
    void Drop();
    void DropBytes();

private:
    void ReadPort(uint8_t* bytes, int64_t start, int64_t count);
    RegisterCache::Block* Block(int64_t start, int64_t length);
    void Release();
    // Returns the length; throws RangeError when `count` is larger.
    int64_t LengthFor(int64_t count, bool verify);
    void DropOverlapping(const RegisterCache::Place& place);
    const PropertyRecord* OffsetBehind(const PropertyRecord* index) const;
    int64_t IndexPart(const PropertyRecord* record, ReadOptions options);

    Node& node;
    PortNode* port = nullptr;
    Node* lengthNode = nullptr;
    int64_t fixedLength = 0;
    int64_t address = 0;
    bool addressKnown = false;
    bool addressTold = false;    // comes from other nodes
    bool lengthIsOffset = false; // of an index without its own
    RegisterCache::Block* block = nullptr;
};

template <class Base>
class RegisterOf : public Base, public IRegister
{
public:
    RegisterOf(NodeMap& owner, NodeIndex number) : Base(owner, number), place(*this) {}

    void Resolve() override
    {
        Base::Resolve();
        place.Resolve();
    }
    void DropCaches() override
    {
        Base::DropCaches();
        place.Drop();
    }

    void Set(const uint8_t* pBuffer, int64_t Length, bool Verify = true) override;
    void Get(uint8_t* pBuffer, int64_t Length, bool Verify = false, bool IgnoreCache = false) override;
    int64_t GetLength(bool Verify = false) override;
    int64_t GetAddress(bool Verify = false) override;

protected:
    EAccessMode LinkedMode() const override { return place.LinkedMode(); }
    EAccessMode KindMode() const override { return place.OwnMode(); }
    ECachingMode NaturalCaching() const override { return place.Caching(WriteThrough); }
    // Throws RangeError for a length that the node class does not allow.
    virtual int64_t CheckedLength() { return place.Length(); }
    // Works like Set, for a text that represents the bytes.
    void SetBytes(const uint8_t* bytes, int64_t length, bool verify);

    RegisterPart place;
};

// Throws for a null buffer and for a length that is not within the register.
void CheckRegisterBuffer(const Node& node, RegisterPart& place, const void* buffer, int64_t length);

template <class Base>
void RegisterOf<Base>::Set(const uint8_t* pBuffer, int64_t Length, bool Verify)
{
    this->Change("Set", [&] {
        this->CheckWritable();
        CheckRegisterBuffer(*this, place, pBuffer, Length);
        SetBytes(pBuffer, Length, Verify);
    });
}

template <class Base>
void RegisterOf<Base>::SetBytes(const uint8_t* bytes, int64_t length, bool verify)
{
    this->WriteAnnounced([&] {
        this->valueCached = false;
        place.WriteBytes(bytes, length, verify);
        if (verify) this->CheckErrors();
    });
}

template <class Base>
void RegisterOf<Base>::Get(uint8_t* pBuffer, int64_t Length, bool Verify, bool IgnoreCache)
{
    const Entry entry(*this, "Get");
    this->CheckReadable();
    CheckRegisterBuffer(*this, place, pBuffer, Length);
    place.ReadBytes(pBuffer, Length, {Verify, IgnoreCache});
    if (Verify) this->CheckErrors();
}

template <class Base>
int64_t RegisterOf<Base>::GetLength(bool)
{
    const Entry entry(*this, "GetLength");
    return CheckedLength();
}

template <class Base>
int64_t RegisterOf<Base>::GetAddress(bool Verify)
{
    const Entry entry(*this, "GetAddress");
    return place.Address({Verify, false});
}

} // namespace GENAPI_NAMESPACE::runtime
