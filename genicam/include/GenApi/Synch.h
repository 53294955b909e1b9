// CLock: the recursive lock of a node map. AutoLock: holds one during a block.
#pragma once

#include <Base/GCLinkage.h>
#include <Base/GCTypes.h>
#include <pthread.h>

namespace GENAPI_NAMESPACE
{

class GENAPI_DECL CLock
{
public:
    CLock();
    ~CLock();
    CLock(const CLock&) = delete;
    CLock& operator=(const CLock&) = delete;

    bool TryLock();
    void Lock();
    void Unlock();

private:
    pthread_mutex_t mutex;
};

class CLockEx : public CLock
{};

class AutoLock
{
public:
    AutoLock(CLock& lock) : held(lock) { held.Lock(); }
    ~AutoLock() { held.Unlock(); }
    AutoLock(const AutoLock&) = delete;
    AutoLock& operator=(const AutoLock&) = delete;

private:
    CLock& held;
};

// LockableObject<T>: adds a lock to a class.
template <class T>
class LockableObject
{
public:
    mutable CLock m_Lock;

    class Lock
    {
    public:
        explicit Lock(const LockableObject& object) : held(object.m_Lock) {}
        explicit Lock(const LockableObject* object) : held(object->m_Lock) {}

    private:
        AutoLock held;
    };

    CLock& GetLock() const { return m_Lock; }
};

} // namespace GENAPI_NAMESPACE
