// GenericException and its derived classes: the exceptions of this runtime. None of them is a standard exception.
//
// A value, copyable; what() is composed once, in the constructor. Thrown by the macros below:
//     throw RUNTIME_EXCEPTION("Node '%s' is missing", name);
#pragma once

#include <Base/GCLinkage.h>
#include <Base/GCTypes.h>
#include <sstream>
#include <stdarg.h>
#include <string>

namespace GENICAM_NAMESPACE
{

class GCBASE_RTTI_CLASS_API GenericException
{
public:
    GenericException(const char* description, const char* sourceFileName, unsigned int sourceLine);
    GenericException(
        const char* description, const char* sourceFileName, unsigned int sourceLine, const char* exceptionType);
    GenericException(
        const char* description, const char* sourceFileName, unsigned int sourceLine, const char* entryPoint,
        const char* errorNodeName, const char* exceptionType);
    GenericException(const GenericException& other);
    GenericException& operator=(const GenericException& other);
    virtual ~GenericException() noexcept;

    // Only the description, without type and place.
    virtual const char* GetDescription() const noexcept { return reason.c_str(); }
    virtual const char* GetSourceFileName() const noexcept { return file.c_str(); }
    virtual unsigned int GetSourceLine() const noexcept { return line; }
    // "D : T thrown in node 'N' while calling 'E' (file 'F', line L)"; a part without text is left out.
    virtual const char* what() const noexcept { return text.c_str(); }

private:
    unsigned int line;
    std::string file;
    std::string reason;
    std::string text;
};

#define DECLARE_EXCEPTION(name)                                                                                        \
    class GCBASE_RTTI_CLASS_API name : public GENICAM_NAMESPACE::GenericException                                      \
    {                                                                                                                  \
    public:                                                                                                            \
        name(const char* description, const char* sourceFileName, int sourceLine)                                      \
            : GenericException(description, sourceFileName, static_cast<unsigned int>(sourceLine))                     \
        {}                                                                                                             \
        name(const char* description, const char* sourceFileName, int sourceLine, const char* exceptionType)           \
            : GenericException(description, sourceFileName, static_cast<unsigned int>(sourceLine), exceptionType)      \
        {}                                                                                                             \
        name(                                                                                                          \
            const char* description, const char* sourceFileName, int sourceLine, const char* entryPoint,               \
            const char* errorNodeName, const char* exceptionType)                                                      \
            : GenericException(                                                                                        \
                  description, sourceFileName, static_cast<unsigned int>(sourceLine), entryPoint, errorNodeName,       \
                  exceptionType)                                                                                       \
        {}                                                                                                             \
    }

DECLARE_EXCEPTION(BadAllocException);
DECLARE_EXCEPTION(InvalidArgumentException);
DECLARE_EXCEPTION(OutOfRangeException);
DECLARE_EXCEPTION(PropertyException);
DECLARE_EXCEPTION(RuntimeException);
DECLARE_EXCEPTION(LogicalErrorException);
DECLARE_EXCEPTION(AccessException);
DECLARE_EXCEPTION(TimeoutException);
DECLARE_EXCEPTION(DynamicCastException);

// ExceptionReporter<E>: creates an E for one place in the source. Exists during one expression.
template <class E>
class ExceptionReporter
{
public:
    ExceptionReporter(const char* file, unsigned int line, const char* type = "")
        : sourceFileName(file), sourceLine(line), exceptionType(type)
    {}

    // Works like printf; the text is cut at 2047 bytes.
    __attribute__((format(printf, 2, 3))) E Report(const char* format, ...) const;
    E Report() const { return Make(""); }
    E Report(const std::string& text) const { return Make(text.c_str()); }
    E Report(const std::stringstream& text) const { return Make(text.str().c_str()); }

private:
    E Make(const char* description) const;

    const char* sourceFileName;
    unsigned int sourceLine;
    const char* exceptionType;
};

#define GENERIC_EXCEPTION                                                                                              \
    GENICAM_NAMESPACE::ExceptionReporter<GENICAM_NAMESPACE::GenericException>(__FILE__, __LINE__).Report
#define GENICAM_TYPED_EXCEPTION_(name)                                                                                 \
    GENICAM_NAMESPACE::ExceptionReporter<GENICAM_NAMESPACE::name>(__FILE__, __LINE__, #name).Report
#define BAD_ALLOC_EXCEPTION GENICAM_TYPED_EXCEPTION_(BadAllocException)
#define INVALID_ARGUMENT_EXCEPTION GENICAM_TYPED_EXCEPTION_(InvalidArgumentException)
#define OUT_OF_RANGE_EXCEPTION GENICAM_TYPED_EXCEPTION_(OutOfRangeException)
#define PROPERTY_EXCEPTION GENICAM_TYPED_EXCEPTION_(PropertyException)
#define RUNTIME_EXCEPTION GENICAM_TYPED_EXCEPTION_(RuntimeException)
#define LOGICAL_ERROR_EXCEPTION GENICAM_TYPED_EXCEPTION_(LogicalErrorException)
#define ACCESS_EXCEPTION GENICAM_TYPED_EXCEPTION_(AccessException)
#define TIMEOUT_EXCEPTION GENICAM_TYPED_EXCEPTION_(TimeoutException)
#define DYNAMICCAST_EXCEPTION GENICAM_TYPED_EXCEPTION_(DynamicCastException)

// The bodies behind the range macros; each throws when its comparison fails.
GCBASE_API void CheckRange(
    int64_t value, int64_t min, int64_t max, int64_t inc, const char* sourceFile, int sourceLine);
GCBASE_API void CheckRange(double value, double min, double max, const char* sourceFile, int sourceLine);

#define CHECK_RANGE_I64(value, min, max, inc)                                                                          \
    GENICAM_NAMESPACE::CheckRange(                                                                                     \
        static_cast<int64_t>(value), static_cast<int64_t>(min), static_cast<int64_t>(max), static_cast<int64_t>(inc),  \
        __FILE__, __LINE__)
#define CHECK_RANGE_FLT(value, min, max)                                                                               \
    GENICAM_NAMESPACE::CheckRange(                                                                                     \
        static_cast<double>(value), static_cast<double>(min), static_cast<double>(max), __FILE__, __LINE__)
#define CHECK_DYNAMIC_CAST_POINTER(pointer)                                                                            \
    do                                                                                                                 \
    {                                                                                                                  \
        if (!(pointer)) throw LOGICAL_ERROR_EXCEPTION("Pointer cast failed: null pointer");                            \
    } while (false)

// "printf into a std::string", cut at 2047 bytes.
GCBASE_API __attribute__((format(printf, 1, 0))) std::string FormatExceptionText(const char* format, va_list arguments);

template <class E>
E ExceptionReporter<E>::Report(const char* format, ...) const
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = FormatExceptionText(format, arguments);
    va_end(arguments);
    return Make(text.c_str());
}

template <class E>
E ExceptionReporter<E>::Make(const char* description) const
{
    return E(description, sourceFileName, static_cast<int>(sourceLine), exceptionType);
}

template <>
inline GenericException ExceptionReporter<GenericException>::Make(const char* description) const
{
    return GenericException(description, sourceFileName, sourceLine, exceptionType);
}

} // namespace GENICAM_NAMESPACE
