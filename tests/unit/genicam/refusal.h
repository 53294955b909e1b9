// Refusal: the text of what a call throws, for tests of descriptions that are refused.
#pragma once

#include <GenApi/NodeMapFactory.h>
#include <GenApi/NodeMapRef.h>
#include <GenICam.h>
#include <string>

namespace koro::test
{

// The description of the exception of class E that `act` throws; says so if it is of another class or missing.
template <class E, class Act>
std::string RefusalOf(const Act& act)
{
    try
    {
        act();
    }
    catch (const GENICAM_NAMESPACE::GenericException& exception)
    {
        const GENICAM_NAMESPACE::GenericException* const thrown = &exception;
        if (dynamic_cast<const E*>(thrown)) return exception.GetDescription();
        return std::string("another class: ") + exception.what();
    }
    return "nothing thrown";
}

// The same with all that the exception says: node and entry point as well.
template <class E, class Act>
std::string WholeRefusalOf(const Act& act)
{
    try
    {
        act();
    }
    catch (const E& exception)
    {
        return exception.what();
    }
    return "nothing thrown";
}

// Makes a map and ends it.
inline void Load(GENAPI_NAMESPACE::CNodeMapFactory factory)
{
    GENAPI_NAMESPACE::CastToIDestroy(factory.CreateNodeMap())->Destroy();
}

// The same for a description as text.
template <class E>
std::string Refusal(const std::string& xml)
{
    return RefusalOf<E>(
        [&] { Load(GENAPI_NAMESPACE::CNodeMapFactory(GENICAM_NAMESPACE::gcstring(xml.data(), xml.size()))); });
}

} // namespace koro::test
