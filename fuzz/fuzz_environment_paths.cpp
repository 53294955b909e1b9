// Text from the environment: the producer search path and the stored form of a path.
#include "fuzz/fuzz_target.h"
#include "gentl/environment_inspector.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace
{

using koro::fuzz::Require;

bool IsSeparator(char character)
{
    return character == ':' || character == ';';
}

// Only separators may be lost.
void CheckSplit(std::string_view variable)
{
    std::string kept;
    for (const auto& folder : koro::internal::SplitProducerFolders(variable))
    {
        Require(!folder.empty(), "no folder is empty");
        Require(std::none_of(folder.begin(), folder.end(), IsSeparator), "no folder has a separator");
        kept += folder;
    }
    std::string expected(variable);
    std::erase_if(expected, IsSeparator);
    Require(kept == expected, "the folders are the text without its separators");
}

void CheckStoredForm(std::string_view path)
{
    const auto stored = koro::internal::StoredPathForm(path);
    Require(stored.find("//", 1) == std::string::npos, "no run of slashes behind the first character");
    Require(koro::internal::StoredPathForm(stored) == stored, "the stored form of a stored form is itself");

    const auto withoutSlashes = [](std::string text) {
        std::erase(text, '/');
        return text;
    };
    Require(withoutSlashes(stored) == withoutSlashes(std::string(path)), "nothing but slashes gets lost");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    CheckSplit(text);
    CheckStoredForm(text);
    return 0;
}
