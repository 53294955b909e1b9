#include "producers/kit/producer.h"

#include "producers/kit/failure.h"
#include "producers/kit/system.h"

#include <dlfcn.h>
#include <filesystem>

namespace koro::kit
{

std::string LoadedFile()
{
    static const char somethingInside = 0;
    Dl_info info{};
    if (dladdr(&somethingInside, &info) == 0 || info.dli_fname == nullptr) return {};
    std::error_code error;
    const auto path = std::filesystem::absolute(info.dli_fname, error);
    return error ? info.dli_fname : path.lexically_normal().string();
}

Producer::Producer(ProducerFacts producerFacts) : facts(std::move(producerFacts)) {}

Producer::~Producer() = default;

std::shared_ptr<System> Producer::OpenSystem()
{
    auto system = systems.Open(facts.id, [this] { return MakeSystem(); });
    try
    {
        OnOpened(*system);
    }
    catch (...)
    {
        system->Close();
        throw;
    }
    return system;
}

void Producer::Close()
{
    systems.CloseAll();
}

void Producer::Forget(const System& system)
{
    systems.Forget(system);
}

InfoValue Producer::Info(TL_INFO_CMD command) const
{
    switch (command)
    {
    case TL_INFO_ID:
        return InfoValue::Text(facts.id);
    case TL_INFO_VENDOR:
        return InfoValue::Text(facts.vendor);
    case TL_INFO_MODEL:
        return InfoValue::Text(facts.model);
    case TL_INFO_VERSION:
        return InfoValue::Text(facts.version);
    case TL_INFO_TLTYPE:
        return InfoValue::Text(facts.tlType);
    case TL_INFO_NAME:
        return InfoValue::Text(std::filesystem::path(LoadedFile()).filename().string());
    case TL_INFO_PATHNAME:
        return InfoValue::Text(LoadedFile());
    case TL_INFO_DISPLAYNAME:
        return InfoValue::Text(facts.vendor + " " + facts.model);
    case TL_INFO_CHAR_ENCODING:
        return InfoValue::Int32(TL_CHAR_ENCODING_UTF8);
    case TL_INFO_GENTL_VER_MAJOR:
        if (facts.claimed >= GenTLVersion{1, 5}) return InfoValue::UInt32(facts.claimed.major);
        break;
    case TL_INFO_GENTL_VER_MINOR:
        if (facts.claimed >= GenTLVersion{1, 5}) return InfoValue::UInt32(facts.claimed.minor);
        break;
    default:
        break;
    }
    throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown information");
}

} // namespace koro::kit
