// CommandNode: the element Command: a number to write, and the place where it is written.
#pragma once

#include "nodes/value_node.h"
#include "nodes/value_source.h"

#include <GenApi/ICommand.h>

namespace GENAPI_NAMESPACE::runtime
{

class CommandNode : public ValueNode, public ICommand
{
public:
    using ValueNode::ValueNode;
    void Resolve() override;

    void Execute(bool Verify = true) override;
    void operator()() override { Execute(); }
    bool IsDone(bool Verify = true) override;

    bool IsPolled() override { return busy; }

protected:
    GENICAM_NAMESPACE::gcstring ValueText(ReadOptions options) override;
    void SetText(const GENICAM_NAMESPACE::gcstring& text, bool verify) override;
    EAccessMode NaturalMode() const override;
    ECachingMode NaturalCaching() const override { return source.Caching(WriteThrough); }

private:
    int64_t CommandValue();
    void Run(bool verify);
    bool StillBusy();

    ValueSource<int64_t> source;
    Node* commandNode = nullptr;
    bool busy = false; // executed, and nobody has seen the end yet
};

} // namespace GENAPI_NAMESPACE::runtime
