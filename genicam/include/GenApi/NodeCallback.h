// CNodeCallback: notifies the application that a node may have changed.
//
// A registered callback belongs to its node, which destroys it when it is deregistered or when the node ends. It is
// called on the thread that caused the change: either while the lock of the map is held ("inside") or after it was
// released ("outside").
#pragma once

#include <GenApi/INode.h>

namespace GENAPI_NAMESPACE
{

typedef enum _ECallbackType
{
    cbPostInsideLock = 1,
    cbPostOutsideLock = 2
} ECallbackType;

class CNodeCallback
{
public:
    CNodeCallback(INode* node, ECallbackType type) : m_pNode(node), m_CallbackType(type) {}
    virtual ~CNodeCallback() {}
    CNodeCallback(const CNodeCallback&) = delete;
    CNodeCallback& operator=(const CNodeCallback&) = delete;

    // Called for both types; acts only for its own type.
    virtual void operator()(ECallbackType type) const = 0;
    virtual void Destroy() = 0;
    INode* GetNode() { return m_pNode; }

protected:
    INode* m_pNode;
    ECallbackType m_CallbackType;
};

// Calls a function or function object with the node as its argument. One that converts to false is not called.
template <class Function>
class Function_NodeCallback : public CNodeCallback
{
public:
    Function_NodeCallback(INode* node, const Function& called, ECallbackType type)
        : CNodeCallback(node, type), function(called)
    {}
    void operator()(ECallbackType type) const override
    {
        if (function && type == m_CallbackType) function(m_pNode);
    }
    void Destroy() override { delete this; }

private:
    Function function;
};

// Calls a member function of an object that must outlive the registration.
template <class Client, class Member>
class Member_NodeCallback : public CNodeCallback
{
public:
    typedef void (Client::*PMEMBERFUNC)(INode*);

    Member_NodeCallback(INode* node, Client& object, Member called, ECallbackType type)
        : CNodeCallback(node, type), client(object), member(called)
    {}
    void operator()(ECallbackType type) const override
    {
        if (member && type == m_CallbackType) (client.*member)(m_pNode);
    }
    void Destroy() override { delete this; }

private:
    Client& client;
    PMEMBERFUNC member;
};

template <class Function>
inline CNodeCallback* make_NodeCallback(INode* node, Function function, ECallbackType type)
{
    return new Function_NodeCallback<Function>(node, function, type);
}

template <class Client, class Member>
inline CNodeCallback* make_NodeCallback(INode* node, Client& client, Member member, ECallbackType type)
{
    return new Member_NodeCallback<Client, Member>(node, client, member, type);
}

template <class Function>
inline intptr_t Register(INode* node, Function function, ECallbackType type = cbPostInsideLock)
{
    return node->RegisterCallback(make_NodeCallback(node, function, type));
}

template <class Client, class Member>
inline intptr_t Register(INode* node, Client& client, Member member, ECallbackType type = cbPostInsideLock)
{
    return node->RegisterCallback(make_NodeCallback(node, client, member, type));
}

// The handle must come from a registration that still exists.
GENAPI_DECL void Deregister(CallbackHandleType handle);

} // namespace GENAPI_NAMESPACE
