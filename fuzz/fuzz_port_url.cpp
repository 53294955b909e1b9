// Texts of port URLs, as producers write them: every parser returns a value or refuses, and all split the text at the
// same places.
#include "fuzz/fuzz_target.h"
#include "gentl/port_url_text.h"

#include <algorithm>
#include <string>

namespace
{

using namespace koro::internal;
using koro::fuzz::Require;

void CheckSections(const std::string& url)
{
    const bool hasThree = std::count(url.begin(), url.end(), ';') == 2;
    const auto name = ParseURLFileName(url);
    Require(name.has_value() == hasThree, "a name is there with three sections, and then alone");
    Require(hasThree || !ParseURLRegisterAddress(url), "an address needs three sections");
    Require(hasThree || !ParseURLFileSize(url), "a size needs three sections");
    if (!name) return;
    Require(name->empty() || name->front() != '/', "no name begins with a slash");
    Require(name->find(';') == std::string::npos, "no name has a section's end");
    Require(url.find(*name) != std::string::npos, "a name is a piece of the text");
}

void CheckScheme(const std::string& url)
{
    const auto scheme = ParseURLScheme(url);
    Require(!scheme || (*scheme >= 0 && *scheme <= 2), "a text tells one of three schemes");
    Require(!scheme || url.find(':') != std::string::npos, "a scheme ends with a colon");
    Require(!scheme || !URLSchemeName(*scheme).empty(), "a scheme of a text has a name");
}

// A well-formed text is read with its intended meaning.
void CheckWellFormed(const std::string& text)
{
    std::string name = text;
    std::erase_if(name, [](char letter) { return letter == ';'; });
    const std::string url = "local:" + name + ";10;20?" + name;
    Require(ParseURLScheme(url) == 0, "local is scheme 0");
    Require(ParseURLRegisterAddress(url) == 0x10u, "the address is the second section");
    Require(ParseURLFileSize(url) == 0x20u, "the size ends at the query");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    CheckSections(text);
    CheckScheme(text);
    CheckWellFormed(text);
    return 0;
}
