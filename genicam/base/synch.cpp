#include <GenApi/Synch.h>

namespace GENAPI_NAMESPACE
{

CLock::CLock()
{
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
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
