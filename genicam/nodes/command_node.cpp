#include "nodes/command_node.h"

#include "nodes/errors.h"
#include "nodes/node_inline.h"

namespace GENAPI_NAMESPACE::runtime
{

using GENICAM_NAMESPACE::gcstring;

void CommandNode::Resolve()
{
    ValueNode::Resolve();
    source.Resolve(*this);
    commandNode = Linked(Property::pCommandValue);
}

EAccessMode CommandNode::LinkedMode() const
{
    const EAccessMode mode = source.Mode();
    if (!commandNode || IsReadable(commandNode->AccessMode())) return mode;
    return Combine(mode, commandNode->AccessMode() == NI ? NI : NA);
}

int64_t CommandNode::CommandValue()
{
    return commandNode ? commandNode->ReadInteger({}) : NumberOf(Property::CommandValue, 0);
}

void CommandNode::Execute(bool Verify)
{
    Change("Execute", [&] {
        CheckWritable();
        Run(Verify);
    });
}

void CommandNode::Run(bool verify)
{
    WriteAnnounced([&] {
        const int64_t value = CommandValue();
        source.Write(value, verify);
    });
    // A constant, or a target that cannot be read, is done at once.
    busy = source.Target() && IsReadable(AccessMode()) && IsReadable(source.Target()->AccessMode());
    // While the command is running its result is not known.
    if (verify && !busy) CheckErrors();
}

bool CommandNode::IsDone(bool Verify)
{
    bool done = true;
    Change("IsDone", [&] {
        if (AccessMode() == NI) throw AccessError(*this, "Node is not implemented.");
        if (Verify) CheckErrors();
        done = !Look();
    });
    return done;
}

gcstring CommandNode::ToString(bool Verify, bool IgnoreCache)
{
    gcstring text;
    Change("ToString", [&] {
        CheckReadable();
        text = ValueText({Verify, IgnoreCache});
    });
    return text;
}

bool CommandNode::Look()
{
    if (!busy || StillBusy()) return busy;
    busy = false;
    map.AnnounceWrite(*this);
    return false;
}

bool CommandNode::StillBusy()
{
    Node* const target = source.Target();
    if (!target || !IsReadable(target->AccessMode())) return false;
    return target->ReadInteger({false, true}) == CommandValue();
}

gcstring CommandNode::ValueText(ReadOptions)
{
    return Look() ? "1" : "0";
}

void CommandNode::SetText(const gcstring& text, bool verify)
{
    if (text != "1" && text != "true")
    {
        throw ArgumentError(*this, "The text '" + std::string(text).substr(0, 200) + "' does not execute a command.");
    }
    Run(verify);
}

} // namespace GENAPI_NAMESPACE::runtime
