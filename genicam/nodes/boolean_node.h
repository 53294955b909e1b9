// BooleanNode: the element Boolean: on or off, depending on an underlying number.
#pragma once

#include "nodes/value_node.h"
#include "nodes/value_source.h"

#include <GenApi/IBoolean.h>

namespace GENAPI_NAMESPACE::runtime
{

class BooleanNode : public ValueNode, public IBoolean
{
public:
    using ValueNode::ValueNode;
    void Resolve() override;

    void SetValue(bool Value, bool Verify = true) override;
    using IBoolean::operator=;
    bool GetValue(bool Verify = false, bool IgnoreCache = false) const override;

    int64_t ReadInteger(ReadOptions options) override { return Read(options); }
    double ReadReal(ReadOptions options) override { return Read(options); }
    void WriteInteger(int64_t value, bool verify) override { Write(value != 0, verify); }
    void WriteReal(double value, bool verify) override { Write(value != 0, verify); }

protected:
    GENICAM_NAMESPACE::gcstring ValueText(ReadOptions options) override;
    void SetText(const GENICAM_NAMESPACE::gcstring& text, bool verify) override;
    EAccessMode LinkedMode() const override { return source.Mode(); }
    ECachingMode NaturalCaching() const override { return source.Caching(WriteThrough); }

private:
    bool Read(ReadOptions options);
    bool ReadSource(ReadOptions options);
    void Write(bool value, bool verify);

    ValueSource<int64_t> source;
    int64_t onValue = 1;
    int64_t offValue = 0;
    bool cachedValue = false;
};

} // namespace GENAPI_NAMESPACE::runtime
