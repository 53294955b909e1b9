// CommandNode: the element Command: a number, and the node or register to which it is written.
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
    GENICAM_NAMESPACE::gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;

    bool IsPolled() override { return busy; }

protected:
    GENICAM_NAMESPACE::gcstring ValueText(ReadOptions options) override;
    void SetText(const GENICAM_NAMESPACE::gcstring& text, bool verify) override;
    EAccessMode LinkedMode() const override;
    ECachingMode NaturalCaching() const override { return source.Caching(WriteThrough); }

private:
    int64_t CommandValue();
    void Run(bool verify);
    bool StillBusy();
    // Whether the command is at work. The reading that sees its end announces that to all that depends on the command.
    bool Look();

    ValueSource<int64_t> source;
    Node* commandNode = nullptr;
    bool busy = false; // executed, and nobody has seen the end yet
};

} // namespace GENAPI_NAMESPACE::runtime
