#include "producers/simulator/camera/camera_descriptions.h"

#include "producers/kit/failure.h"
#include "producers/kit/producer.h"
#include "producers/simulator/camera/descriptions.h"
#include "producers/simulator/camera/feature_memory.h"
#include "producers/simulator/kit.h"

#include <fstream>
#include <string>
#include <system_error>
#include <utility>

namespace koro::simulator
{
namespace
{

constexpr std::uintmax_t maxDescriptionBytes = std::uintmax_t{1} << 26;

std::string LoadDescription(const std::filesystem::path& file)
{
    const auto refuse = [&file](const char* why) {
        throw Failure(GC_ERR_ERROR, "description '" + file.string() + "': " + why);
    };
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    if (error) refuse("cannot be read");
    if (size > maxDescriptionBytes) refuse("is larger than 67108864 bytes");
    if (size == 0) refuse("is empty");
    std::string text(size, '\0');
    std::ifstream in(file, std::ios::binary);
    if (!in.read(text.data(), static_cast<std::streamsize>(size))) refuse("cannot be read");
    return text;
}

const Description& OwnDescription(const std::string& tlType, bool zipped)
{
    if (tlType == "GEV") return zipped ? gevArchiveDescription : gevDescription;
    if (tlType == "CL") return zipped ? clArchiveDescription : clDescription;
    if (tlType == "U3V") return zipped ? u3vArchiveDescription : u3vDescription;
    if (tlType == "IIDC") return zipped ? iidcArchiveDescription : iidcDescription;
    return zipped ? plainArchiveDescription : plainDescription;
}

// Beside the producer's file, also when it was loaded through a link.
std::string FileBesideProducer(std::string_view name)
{
    std::error_code error;
    const std::filesystem::path producer = LoadedFile();
    const auto real = std::filesystem::canonical(producer, error);
    return ((error ? producer : real).parent_path() / name).string();
}

} // namespace

PortRegisters MakeCameraRegisters(
    const CameraSettings& settings, const PortFacts& facts, const std::shared_ptr<CameraFeatures>& features)
{
    if (!settings.description.empty())
    {
        auto memory = std::make_shared<FeatureMemory>(LoadDescription(settings.description));
        DescriptionURL url;
        url.file = settings.description.filename().string();
        url.address = FeatureMemory::descriptionAddress;
        url.size = memory->DescriptionBytes();
        return {std::move(memory), {std::move(url)}, features->Order()};
    }
    const Description& description = OwnDescription(facts.tlType, settings.descriptionForm == DescriptionForm::Zipped);
    features->AddDescription(facts, description);
    std::vector<DescriptionURL> urls{LocalURL(description)};
    if (settings.descriptionForm == DescriptionForm::TwoURLs)
        urls.push_back(FileURL(description, FileBesideProducer(description.fileName)));
    return {features, std::move(urls), features->Order()};
}

} // namespace koro::simulator
