// The exception classes: all failures below the exported functions.
//
// what() is exactly the text that the thrower composed: no prefix, class name or code is added. Only
// capi/call_frame.cpp maps the classes to return codes.
#pragma once

#include <stdexcept>
#include <string>

namespace koro::internal
{

class Exception : public std::runtime_error
{
public:
    explicit Exception(const std::string& text);
    // For a null text what() returns "Unknown exception".
    explicit Exception(const char* text);
};

class AbortedException : public Exception
{
public:
    using Exception::Exception;
};

class BadAccessException : public Exception
{
public:
    using Exception::Exception;
};

class BadAllocException : public Exception
{
public:
    using Exception::Exception;
};

class BufferTooSmallException : public Exception
{
public:
    using Exception::Exception;
};

class CTILoadingException : public Exception
{
public:
    using Exception::Exception;
};

class InternalErrorException : public Exception
{
public:
    using Exception::Exception;
};

class InvalidAddressException : public Exception
{
public:
    using Exception::Exception;
};

class InvalidArgumentException : public Exception
{
public:
    using Exception::Exception;
};

class IOException : public Exception
{
public:
    using Exception::Exception;
};

class NoDataException : public Exception
{
public:
    using Exception::Exception;
};

class NotAvailableException : public Exception
{
public:
    using Exception::Exception;
};

class NotFoundException : public Exception
{
public:
    using Exception::Exception;
};

class NotImplementedException : public Exception
{
public:
    using Exception::Exception;
};

class NotInitializedException : public Exception
{
public:
    using Exception::Exception;
};

class OutOfRangeException : public Exception
{
public:
    using Exception::Exception;
};

class TimeoutException : public Exception
{
public:
    using Exception::Exception;
};

// Runs `operation`; the library's own exceptions pass, any other standard exception leaves as
// InternalErrorException with its text.
template <class Operation>
decltype(auto) WithStandardExceptionsAsInternalErrors(Operation&& operation)
{
    try
    {
        return operation();
    }
    catch (const Exception&)
    {
        throw;
    }
    catch (const std::exception& exception)
    {
        throw InternalErrorException(exception.what());
    }
}

} // namespace koro::internal
