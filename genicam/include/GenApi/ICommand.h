// ICommand: a command that the device executes. Belongs to the node map.
#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT ICommand : virtual public IValue
{
    virtual void Execute(bool Verify = true) = 0;
    virtual void operator()() = 0;
    // Returns true without a preceding Execute; otherwise reads the port until the command value has disappeared.
    virtual bool IsDone(bool Verify = true) = 0;
};

// A reference to this interface.
template <class T>
class CCommandRefT : public CValueRefT<T, ICommand>
{
public:
    void Execute(bool Verify = true) override { this->Target().Execute(Verify); }
    void operator()() override { this->Target().operator()(); }
    bool IsDone(bool Verify = true) override { return this->Target().IsDone(Verify); }
};

typedef CCommandRefT<ICommand> CCommandRef;

} // namespace GENAPI_NAMESPACE
