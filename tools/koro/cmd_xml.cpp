#include "tools/koro/commands.h"
#include "tools/koro/description_bytes.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/tool_error.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

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

int WriteOut(const char* bytes, size_t size)
{
    if (std::fwrite(bytes, 1, size, stdout) == size && std::fflush(stdout) == 0) return exitSuccess;
    throw ToolError(std::string("Cannot write the description: ") + std::strerror(errno) + ".");
}

int WriteXML(const XMLCommand& command)
{
    const FeatureSession session(command.target, FeatureSession::Access::Read, FeatureSession::Wants::Port);
    const std::vector<uint8_t> bytes = DescriptionBytes(session.Port(), command.url);
    if (!command.unzip) return WriteOut(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::string text = DescriptionText(bytes);
    return WriteOut(text.data(), text.size());
}

} // namespace

Action DefineXML(CLI::App& command)
{
    const auto options = std::make_shared<XMLCommand>();
    DefineTarget(command, options->target, false);
    command.add_option("--url", options->url, "Which of the URLs, from 0")->capture_default_str();
    command.add_flag("--unzip", options->unzip, "Expand a description that comes as an archive");
    return [options] { return WriteXML(*options); };
}

} // namespace koro::tool
