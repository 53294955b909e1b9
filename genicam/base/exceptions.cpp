#include <Base/GCException.h>
#include <stdio.h>

namespace GENICAM_NAMESPACE
{

namespace
{

std::string FileName(const std::string& path)
{
    return path.substr(path.find_last_of("/\\") + 1); // npos + 1 is 0: no separator, the whole path
}

std::string Compose(
    const std::string& description, const std::string& type, const std::string& node, const std::string& entryPoint,
    const std::string& sourceFile, unsigned int sourceLine)
{
    std::string text = description;
    if (!type.empty()) text += " : " + type + " thrown";
    if (!node.empty()) text += " in node '" + node + "'";
    if (!entryPoint.empty()) text += " while calling '" + entryPoint + "'";
    return text + " (file '" + FileName(sourceFile) + "', line " + std::to_string(sourceLine) + ")";
}

} // namespace

GenericException::GenericException(const char* description, const char* sourceFileName, unsigned int sourceLine)
    : GenericException(description, sourceFileName, sourceLine, "", "", "")
{}

GenericException::GenericException(
    const char* description, const char* sourceFileName, unsigned int sourceLine, const char* exceptionType)
    : GenericException(description, sourceFileName, sourceLine, "", "", exceptionType)
{}

GenericException::GenericException(
    const char* description, const char* sourceFileName, unsigned int sourceLine, const char* entryPoint,
    const char* errorNodeName, const char* exceptionType)
    : line(sourceLine), file(sourceFileName), reason(description),
      text(Compose(description, exceptionType, errorNodeName, entryPoint, sourceFileName, sourceLine))
{}

GenericException::GenericException(const GenericException& other) = default;
GenericException& GenericException::operator=(const GenericException& other) = default;
GenericException::~GenericException() noexcept = default;

std::string FormatExceptionText(const char* format, va_list arguments)
{
    char text[2048];
    const int length = vsnprintf(text, sizeof text, format, arguments);
    return length < 0 ? std::string() : std::string(text);
}

void CheckRange(int64_t value, int64_t min, int64_t max, int64_t inc, const char* sourceFile, int sourceLine)
{
    const ExceptionReporter<OutOfRangeException> outOfRange(
        sourceFile, static_cast<unsigned int>(sourceLine), "OutOfRangeException");
    const ExceptionReporter<LogicalErrorException> logicalError(
        sourceFile, static_cast<unsigned int>(sourceLine), "LogicalErrorException");
    if (value < min)
    {
        throw outOfRange.Report(
            "Value = %" FMT_I64 "d must be greater than or equal to Min = %" FMT_I64 "d", value, min);
    }
    if (value > max)
    {
        throw outOfRange.Report(
            "Value = %" FMT_I64 "d must be smaller than or equal to Max = %" FMT_I64 "d", value, max);
    }
    if (inc == 0) throw logicalError.Report("Inc = 0 must not be zero");

    // Unsigned: the distance of the outermost values does not fit the signed type.
    const uint64_t distance = static_cast<uint64_t>(value) - static_cast<uint64_t>(min);
    const uint64_t step = inc < 0 ? 0 - static_cast<uint64_t>(inc) : static_cast<uint64_t>(inc);
    if (distance % step != 0)
    {
        throw outOfRange.Report(
            "Value = %" FMT_I64 "d is not on the grid of Min = %" FMT_I64 "d and Inc = %" FMT_I64 "d", value, min, inc);
    }
}

void CheckRange(double value, double min, double max, const char* sourceFile, int sourceLine)
{
    const ExceptionReporter<OutOfRangeException> outOfRange(
        sourceFile, static_cast<unsigned int>(sourceLine), "OutOfRangeException");
    if (value < min) throw outOfRange.Report("Value = %f must be greater than or equal to Min = %f", value, min);
    if (value > max) throw outOfRange.Report("Value = %f must be smaller than or equal to Max = %f", value, max);
}

} // namespace GENICAM_NAMESPACE
