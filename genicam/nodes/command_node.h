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
    // Whether the command is running. The read that sees its end notifies all dependents of the command.
    bool Look();

    ValueSource<int64_t> source;
    Node* commandNode = nullptr;
    bool busy = false; // executed, and its end was not seen yet
};

} // namespace GENAPI_NAMESPACE::runtime
