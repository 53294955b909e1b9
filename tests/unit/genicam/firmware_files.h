// Reading update files, and what an operation throws, as text.
#pragma once

#include "tests/support/update_files.h"

#include <FirmwareUpdate/FirmwareUpdateDefaultInfoCollector.h>
#include <FirmwareUpdate/FirmwareUpdateExceptions.h>
#include <FirmwareUpdate/FirmwareUpdater.h>
#include <string>
#include <vector>

namespace koro::test
{

inline std::vector<GENAPI_NAMESPACE::CFirmwareUpdateInfo> ReadAll(
    const UpdateFileOnDisk& file, const char* language = nullptr)
{
    GENAPI_NAMESPACE::CFirmwareUpdateDefaultInfoCollector collector;
    GENAPI_NAMESPACE::CFirmwareUpdater().ReadFirmwareUpdateInfos(file.path.c_str(), collector, language);
    return collector.firmwareUpdateInfoList;
}

// "Class: description" of what is thrown, without folders; "nothing".
template <class Act>
std::string Thrown(const Act& act)
{
    using namespace GENICAM_NAMESPACE;
    const auto told = [](const char* name, const GenericException& exception) {
        std::string text = std::string(name) + ": " + exception.GetDescription();
        const size_t end = text.find("/update.guf'");
        const size_t begin = end == std::string::npos ? end : text.rfind('\'', end);
        return begin == std::string::npos ? text : text.replace(begin + 1, end - begin, "");
    };
    try
    {
        act();
        return "nothing";
    }
    catch (const FileNotFoundException& exception)
    {
        return told("FileNotFoundException", exception);
    }
    catch (const FileIOException& exception)
    {
        return told("FileIOException", exception);
    }
    catch (const FormatException& exception)
    {
        return told("FormatException", exception);
    }
    catch (const InvalidArgumentException& exception)
    {
        return told("InvalidArgumentException", exception);
    }
    catch (const RuntimeException& exception)
    {
        return told("RuntimeException", exception);
    }
    catch (const LogicalErrorException& exception)
    {
        return told("LogicalErrorException", exception);
    }
    catch (const AccessException& exception)
    {
        return told("AccessException", exception);
    }
    catch (const OutOfRangeException& exception)
    {
        return told("OutOfRangeException", exception);
    }
    catch (const GenericException& exception)
    {
        return told("another GenericException", exception);
    }
    catch (const std::exception& exception)
    {
        return std::string("std::exception: ") + exception.what();
    }
    catch (...)
    {
        return "something else";
    }
}

} // namespace koro::test
