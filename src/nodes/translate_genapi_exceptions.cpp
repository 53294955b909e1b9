#include "nodes/translate_genapi_exceptions.h"

#include "base/exceptions.h"

namespace koro::internal
{

void RethrowGenApiExceptionAsOwn()
{
    try
    {
        throw;
    }
    catch (const GENICAM_NAMESPACE::AccessException& exception)
    {
        throw BadAccessException(exception.what());
    }
    catch (const GENICAM_NAMESPACE::BadAllocException& exception)
    {
        throw BadAllocException(exception.what());
    }
    catch (const GENICAM_NAMESPACE::InvalidArgumentException& exception)
    {
        throw InvalidArgumentException(exception.what());
    }
    catch (const GENICAM_NAMESPACE::OutOfRangeException& exception)
    {
        throw OutOfRangeException(exception.what());
    }
    catch (const GENICAM_NAMESPACE::TimeoutException& exception)
    {
        throw TimeoutException(exception.what());
    }
    catch (const GENICAM_NAMESPACE::GenericException& exception)
    {
        throw InternalErrorException(exception.what());
    }
}

} // namespace koro::internal
