#include <Base/GCSynch.h>
#include <GenApi/Synch.h>
#include <gtest/gtest.h>
#include <thread>

namespace
{

// Whether another thread gets the lock.
template <class Lock>
bool IsFree(Lock& lock)
{
    bool taken = false;
    std::thread([&] {
        taken = lock.TryLock();
        if (taken) lock.Unlock();
    }).join();
    return taken;
}

// The same classes in both name spaces.
struct OfBase
{
    typedef GENICAM_NAMESPACE::CLock CLock;
    typedef GENICAM_NAMESPACE::CLockEx CLockEx;
    typedef GENICAM_NAMESPACE::AutoLock AutoLock;
    struct Object : GENICAM_NAMESPACE::LockableObject<Object>
    {};
};
struct OfGenApi
{
    typedef GENAPI_NAMESPACE::CLock CLock;
    typedef GENAPI_NAMESPACE::CLockEx CLockEx;
    typedef GENAPI_NAMESPACE::AutoLock AutoLock;
    struct Object : GENAPI_NAMESPACE::LockableObject<Object>
    {};
};
static_assert(!std::is_same_v<OfBase::CLock, OfGenApi::CLock>);

template <class Names>
class Locks : public testing::Test
{};
typedef testing::Types<OfBase, OfGenApi> Both;
TYPED_TEST_SUITE(Locks, Both, );

TYPED_TEST(Locks, AreFreeOnlyAfterAsManyUnlocksAsLocks)
{
    typename TypeParam::CLock lock;
    lock.Lock();
    EXPECT_TRUE(lock.TryLock());
    EXPECT_FALSE(IsFree(lock));
    lock.Unlock();
    EXPECT_FALSE(IsFree(lock));
    lock.Unlock();
    EXPECT_TRUE(IsFree(lock));
}

TYPED_TEST(Locks, UnlockByWhoeverDoesNotHoldThemChangesNothing)
{
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the race detector reports the misuse itself";
#endif
    typename TypeParam::CLock lock;
    lock.Unlock();
    EXPECT_TRUE(IsFree(lock));
    lock.Lock();
    std::thread([&] { lock.Unlock(); }).join();
    EXPECT_FALSE(IsFree(lock));
    lock.Unlock();
    EXPECT_TRUE(IsFree(lock));
}

TYPED_TEST(Locks, AutoLockReleasesOnEveryWayOut)
{
    typename TypeParam::CLockEx lock;
    try
    {
        const typename TypeParam::AutoLock held(lock);
        EXPECT_FALSE(IsFree(lock));
        throw 1;
    }
    catch (int)
    {}
    EXPECT_TRUE(IsFree(lock));
}

TYPED_TEST(Locks, LockableObjectHasALockOfItsOwn)
{
    const typename TypeParam::Object object;
    {
        const typename TypeParam::Object::Lock held(object);
        EXPECT_FALSE(IsFree(object.m_Lock));
    }
    EXPECT_TRUE(IsFree(object.GetLock()));
}

} // namespace
