// Why a feature cannot be written at this time, in sentences: the nodes that lock it or make it unavailable, with their
// values, as the description tells them. One thread at a time.
#pragma once

#include "tools/koro/description_links.h"
#include <koro/koro.hpp>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace koro::tool
{

class AccessReason
{
public:
    // Reads nothing yet.
    AccessReason(NodeMap nodes, DescriptionLinks links) : map(nodes), description(std::move(links)) {}

    // Empty when the node can be written; else at least one sentence. `otherwise` is the reason when the description has
    // none; it may be empty.
    std::vector<std::string> WhyNotWritable(const Node& node, const std::string& otherwise) const;

private:
    using Names = std::set<std::string>;

    std::vector<std::string> Reasons(const Node& node, const std::string& otherwise) const;
    void Explain(const std::string& name, Names& visited, std::vector<std::string>& reasons) const;
    void ExplainBy(
        const std::vector<std::string>& deciders, bool blocksWhenSet, const std::string& subject,
        const std::string& effect, std::vector<std::string>& reasons) const;
    std::string Behind(const std::string& decider, const std::string& subject) const;
    std::string ValueOf(const std::string& name) const;

    const NodeMap map;
    const DescriptionLinks description;
};

// Of the description that the port serves; none of one that cannot be fetched.
DescriptionLinks DescriptionLinksOf(const Port& port);
// Why a feature can never be written: the description makes it, or a node that it takes its value from, read-only.
// Empty for any other feature.
std::string ReadOnlySentence(const DescriptionLinks& description, const std::string& name);
// The same as AccessReason from the description that the port serves; one that cannot be fetched states nothing.
std::vector<std::string> WhyNotWritable(
    const NodeMap& nodes, const Port& port, const Node& node, const std::string& otherwise = {});
// Several sentences in one line.
std::string SentencesOf(const std::vector<std::string>& reasons);

} // namespace koro::tool
