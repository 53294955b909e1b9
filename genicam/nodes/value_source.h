// ValueSource: the place of a node's number: in the node itself, in the node of pValue and its copies, or chosen by an
// index.
//
// Part of its node; used while the lock of the map is held.
#pragma once

#include "nodes/node.h"

namespace GENAPI_NAMESPACE::runtime
{

template <class Number>
class ValueSource
{
public:
    void Resolve(const Node& resolved);

    Number Read(ReadOptions options);
    // Writes to every target, in the order of the file.
    void Write(Number value, bool verify);
    // Sets the constant of the node itself, before anything depends on it.
    void Preset(Number value) { otherwise.constant = value; }
    EAccessMode Mode() const;
    ECachingMode Caching(ECachingMode ofConstant) const;
    // The node that provides limits and similar properties; null for a constant in the node itself.
    Node* Target() const;
    // The limits that all targets accept; the whole range without a target. Throws AccessException for a target that
    // does not exist.
    Number Min() const;
    Number Max() const;
    bool Indexed() const { return index != nullptr; }

private:
    struct Choice
    {
        int64_t index;
        Node* node; // null: the constant
        Number constant;
    };

    Choice& Chosen(ReadOptions options = {});
    const Choice& Chosen() const { return const_cast<ValueSource*>(this)->Chosen(); }

    const Node* owner = nullptr;
    Node* main = nullptr;        // pValue
    std::vector<Node*> targets;  // main and the copies
    Node* index = nullptr;       // pIndex
    std::vector<Choice> choices; // the indexed ones
    Choice otherwise = {0, nullptr, Number()};
};

extern template class ValueSource<int64_t>;
extern template class ValueSource<double>;

} // namespace GENAPI_NAMESPACE::runtime
