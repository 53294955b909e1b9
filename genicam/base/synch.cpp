#include <Base/GCSynch.h>
#include <GenApi/Synch.h>

namespace
{

void MakeRecursive(pthread_mutex_t& mutex)
{
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

} // namespace

namespace GENAPI_NAMESPACE
{

CLock::CLock()
{
    MakeRecursive(mutex);
}

CLock::~CLock()
{
    pthread_mutex_destroy(&mutex);
}

bool CLock::TryLock()
{
    return pthread_mutex_trylock(&mutex) == 0;
}

void CLock::Lock()
{
    pthread_mutex_lock(&mutex);
}

void CLock::Unlock()
{
    pthread_mutex_unlock(&mutex);
}

} // namespace GENAPI_NAMESPACE

namespace GENICAM_NAMESPACE
{

CLock::CLock()
{
    MakeRecursive(mutex);
}

CLock::~CLock()
{
    pthread_mutex_destroy(&mutex);
}

bool CLock::TryLock()
{
    return pthread_mutex_trylock(&mutex) == 0;
}

void CLock::Lock()
{
    pthread_mutex_lock(&mutex);
}

void CLock::Unlock()
{
    pthread_mutex_unlock(&mutex);
}

} // namespace GENICAM_NAMESPACE
