// EnumerationNode, EnumEntryNode: the elements Enumeration and EnumEntry: a number with names for some of its values.
#pragma once

#include "nodes/value_node.h"
#include "nodes/value_source.h"

#include <GenApi/IEnumEntry.h>
#include <GenApi/IEnumeration.h>

namespace GENAPI_NAMESPACE::runtime
{

class EnumEntryNode : public ValueNode, public IEnumEntry
{
public:
    EnumEntryNode(NodeMap& owner, NodeIndex index);

    GENICAM_NAMESPACE::gcstring GetDisplayName() const override;
    int64_t GetValue() override { return Number(); }
    GENICAM_NAMESPACE::gcstring GetSymbolic() const override;
    double GetNumericValue() override { return Numeric(); }
    bool IsSelfClearing() override { return SelfClearing(); }

    int64_t Number() const { return number; }
    double Numeric() const { return numeric; }
    bool SelfClearing() const;
    std::string_view Symbolic() const;

protected:
    GENICAM_NAMESPACE::gcstring ValueText(ReadOptions options) override;
    void SetText(const GENICAM_NAMESPACE::gcstring& text, bool verify) override;
    EAccessMode KindMode() const override { return RO; }

private:
    int64_t number = 0;
    double numeric = 0;
};

class EnumerationNode : public ValueNode, public IEnumeration
{
public:
    using ValueNode::ValueNode;
    void Resolve() override;

    void GetSymbolics(StringList_t& Symbolics) override;
    void GetEntries(NodeList_t& Entries) override;
    IEnumeration& operator=(const GENICAM_NAMESPACE::gcstring& ValueStr) override;
    void SetIntValue(int64_t Value, bool Verify = true) override;
    GENICAM_NAMESPACE::gcstring operator*() override { return ToString(); }
    int64_t GetIntValue(bool Verify = false, bool IgnoreCache = false) override;
    IEnumEntry* GetEntryByName(const GENICAM_NAMESPACE::gcstring& Symbolic) override;
    IEnumEntry* GetEntry(const int64_t IntValue) override;
    IEnumEntry* GetCurrentEntry(bool Verify = false, bool IgnoreCache = false) override;

    // As a number it has the numeric value of the current entry; throws LogicalErrorException if there is none.
    int64_t ReadInteger(ReadOptions options) override;
    double ReadReal(ReadOptions options) override;
    void WriteInteger(int64_t value, bool verify) override { WriteNearest(static_cast<double>(value), verify); }
    void WriteReal(double value, bool verify) override { WriteNearest(value, verify); }
    int64_t PlainNumber() override { return Read({}); }
    bool IsPolled() override { return selfClearing; }
    // The unit of the underlying number does not apply to entries.
    GENICAM_NAMESPACE::gcstring UnitText() const override { return {}; }
    void ThrowIfError() override;

    const EnumEntryNode* EntryNamed(std::string_view symbolic) const;

protected:
    GENICAM_NAMESPACE::gcstring ValueText(ReadOptions options) override;
    void SetText(const GENICAM_NAMESPACE::gcstring& text, bool verify) override;
    EAccessMode LinkedMode() const override;
    ECachingMode NaturalCaching() const override { return source.Caching(WriteThrough); }

private:
    int64_t Read(ReadOptions options);
    void Write(int64_t number, bool verify);
    void WriteNearest(double value, bool verify);
    void SetEntry(const EnumEntryNode& entry, bool verify);
    EnumEntryNode* EntryFor(int64_t number) const;
    EnumEntryNode* Current(ReadOptions options);
    // Throws AccessException when the current entry is not available.
    void CheckEntry(const EnumEntryNode& entry) const;

    ValueSource<int64_t> source;
    std::vector<EnumEntryNode*> entries;    // in the order of the description
    std::vector<EnumEntryNode*> byNumber;   // sorted, equal ones in that order
    std::vector<EnumEntryNode*> bySymbolic; // likewise
    int64_t cachedNumber = 0;
    bool selfClearing = false; // the last written entry clears itself and was not yet seen to have done so
};

} // namespace GENAPI_NAMESPACE::runtime
