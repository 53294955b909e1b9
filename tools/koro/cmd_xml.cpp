#include "tools/koro/commands.h"
#include "tools/koro/description_bytes.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/number_option.h"
#include "tools/koro/standard_streams.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace koro::tool
{

namespace
{

struct XMLCommand
{
    FeatureTarget target;
    size_t url = 0;
    bool unzip = false;
};

int WriteXML(XMLCommand command)
{
    std::vector<std::string> words;
    CompleteTarget(command.target, words);
    RequireWords(words, 0, 0, "");
    const FeatureSession session(command.target, FeatureSession::Access::Read, FeatureSession::Wants::Port);
    const std::vector<uint8_t> bytes = DescriptionBytes(session.Port(), command.url);
    const std::string text = command.unzip ? DescriptionText(bytes) : std::string(bytes.begin(), bytes.end());
    std::fwrite(text.data(), 1, text.size(), Output());
    return exitSuccess;
}

} // namespace

Action DefineXML(CLI::App& command)
{
    const auto options = std::make_shared<XMLCommand>();
    DefineAnyModule(command, options->target, true);
    TakesWholeNumber(command.add_option("--url", options->url, "Which of the URLs, from 0"), 0, 1000000)
        ->capture_default_str();
    command.add_flag("--unzip", options->unzip, "Expand a description that comes as an archive");
    return [options] { return WriteXML(*options); };
}

} // namespace koro::tool
