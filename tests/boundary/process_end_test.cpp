// Exit handlers and static objects of an application use the library after the main thread's own objects have gone.

#include "tests/support/boundary.h"
#include "tests/support/environment_variable.h"
#include "tests/support/scripted_producer.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>

namespace
{

using namespace koro::test;

// Ends the process with 1 from inside an exit handler, where std::exit must not be called again.
template <class Value>
void ExpectAtExit(const Value& actual, const Value& expected)
{
    if (actual == expected) return;
    std::cerr << actual << " instead of " << expected << std::endl;
    std::_Exit(1);
}

std::string expectedPath;

TEST(ProcessEnd, LastErrorOfTheMainThreadHasEndedAndBeginsAnew)
{
    const auto handler = [] {
        ExpectAtExit(LastError(), Error{});
        const Error failure{KORO_RETURN_CODE_INVALID_HANDLE, "systemDescriptorHandle is invalid!"};
        ExpectAtExit(Outcome(KORO_SystemDescriptor_GetKey(nullptr, nullptr, nullptr)), failure);
        ExpectAtExit(KORO_Library_Close(), KORO_ReturnCode{KORO_RETURN_CODE_SUCCESS});
        ExpectAtExit(LastError(), failure);
    };
    EXPECT_EXIT(
        {
            std::atexit(handler);
            Require(KORO_Library_Initialize());
            KORO_System_Destruct(nullptr);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(ProcessEnd, ListOfProducersIsStillThere)
{
    const auto handler = [] {
        ExpectAtExit(Get<std::size_t>(KORO_EnvironmentInspector_GetNumCTIPaths), std::size_t{1});
        ExpectAtExit(GetText(KORO_EnvironmentInspector_GetCTIPath, std::size_t{0}), expectedPath);
    };
    const ScriptedProducer producer;
    const EnvironmentVariable search("GENICAM_GENTL64_PATH", producer.Folder().Path().string());
    expectedPath = producer.Path();
    EXPECT_EXIT(
        {
            std::atexit(handler);
            Require(KORO_Library_Initialize());
            Require(KORO_EnvironmentInspector_UpdateCTIPaths());
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

// A listener's thread waits inside the producer then, for ever.
TEST(ProcessEnd, OpenInterfaceOfASimulatedCameraIsNoHindrance)
{
    const std::string simulator = BuiltProducer("zvr_koro_simulator");
    EXPECT_EXIT(
        {
            Require(KORO_Library_Initialize());
            const OpenTree tree(simulator);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace
