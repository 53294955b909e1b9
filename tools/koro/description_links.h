// DescriptionLinks: what each node of a description says about its access, by name: which nodes it takes its value from
// and which decide whether it is there, available or locked. Constant once made; any thread.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

namespace koro::tool
{

struct NodeLinks
{
    std::string element;    // "IntReg", "SwissKnife", ...
    std::string accessMode; // of a register
    std::string imposedMode;
    std::vector<std::string> implementedBy;
    std::vector<std::string> availableBy;
    std::vector<std::string> lockedBy;
    std::vector<std::string> values; // pValue
    std::vector<std::string> inputs; // variables of formulas, and nodes that invalidate
};

class DescriptionLinks
{
public:
    // Takes XML text; what is no XML ends it, with what came before. Never throws for its content.
    explicit DescriptionLinks(const std::string& xml);

    // Null for a name that the description does not have.
    const NodeLinks* Of(const std::string& name) const;
    // The nodes that take their value from this one.
    std::vector<std::string> ShownBy(const std::string& name) const;

private:
    std::unordered_map<std::string, NodeLinks> nodes;
};

} // namespace koro::tool
