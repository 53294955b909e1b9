// ValueNode: a node with a value as text, and the cache of that value.
//
// Derived classes implement ValueText and SetText, which are called while the lock is held.
#pragma once

#include "nodes/node.h"

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE::runtime
{

class ValueNode : public Node, public virtual IValue
{
public:
    using Node::Node;

    GENICAM_NAMESPACE::gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
    void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify = true) override;
    bool IsValueCacheValid() const override;
    void DropCaches() override;
    void DropValue() override { valueCached = false; }

protected:
    // The text for ToString; the node is known to be readable.
    virtual GENICAM_NAMESPACE::gcstring ValueText(ReadOptions options) = 0;
    // Writes the value of the text; throws ArgumentError for a text that is not a value.
    virtual void SetText(const GENICAM_NAMESPACE::gcstring& text, bool verify) = 0;

    // Returns the cached value if it is valid and may be used, otherwise the result of `read`. A read that bypasses the
    // caches does not fill them, so the next one goes to the port too.
    template <class Value, class Act>
    Value ReadCached(Value& cached, ReadOptions options, const Act& read)
    {
        CheckReadable();
        if (valueCached && !options.verify && !options.ignoreCache) return cached;
        const Descent descent(*this);
        cached = read();
        valueCached = !options.ignoreCache && CachingMode() != NoCache;
        if (valueCached) NoteFilled();
        return cached;
    }

    // Writes the value by `write`; the value stays in the cache if writes go through the cache.
    template <class Value, class Act>
    void WriteCached(Value& cached, Value value, const Act& write)
    {
        const Descent descent(*this);
        valueCached = false;
        write();
        cached = value;
        valueCached = CachingMode() == WriteThrough;
        if (valueCached) NoteFilled();
    }

    bool valueCached = false;
};

} // namespace GENAPI_NAMESPACE::runtime
