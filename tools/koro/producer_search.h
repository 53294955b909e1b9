// ProducerSearch: where the environment says that producers lie, and why a place does not serve. Values. Any thread.
#pragma once

#include "tools/koro/producer_option.h"

#include <string>
#include <vector>

namespace koro::tool
{

inline constexpr char producerPathVariable[] = "GENICAM_GENTL64_PATH";

struct SearchedDirectory
{
    std::string path;
    std::string problem; // empty when it could be read
};

struct ProducerSearch
{
    bool variableIsSet = false;   // and names at least one directory
    bool variableIsEmpty = false; // it is there and names none, which counts as not set
    // The folder of the producers that came with the tool, when these are used because the variable is not set.
    std::string ownFolder;
    // The simulator among the candidates whose cameras count only when there are no others; empty when they count.
    std::string standIn;
    std::vector<SearchedDirectory> directories;
    // Canonical paths of the .cti entries, sorted, each once. A directory or a broken link of that name is among
    // them, so that a person hears why it does not work.
    std::vector<std::string> candidates;
    // One line for each file name that lies in several directories.
    std::vector<std::string> duplicates;
};

// `variable` is the variable's value, null when unset; one that names no directory counts as unset. ":" and ";"
// separate directories.
ProducerSearch SearchProducers(const char* variable);

// The search in this process's environment; with a file, that one and nothing else. Without the variable the producers
// that came with the tool are found. Throws ToolError when the simulator is wished for and did not come with it.
ProducerSearch SearchProducers(const ProducerChoice& choice);

// For a producer that was named: throws ToolError when no file of that path can be read. What the system's loader and
// the library say of such a path does not name the reason.
void RequireProducerFile(const std::string& path);

} // namespace koro::tool
