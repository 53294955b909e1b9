// CLock: a recursive lock. AutoLock: holds one during a block. These classes belong to Base; the lock of a node map is
// the one of GenApi/Synch.h. Code that opens both namespaces must state which one it uses.
#pragma once

#include <Base/GCLinkage.h>
#include <Base/GCTypes.h>
#include <pthread.h>

namespace GENICAM_NAMESPACE
{

class GCBASE_API CLock
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

} // namespace GENICAM_NAMESPACE
