// Listener: records which nodes report a change.
#pragma once

#include "tests/unit/genicam/small_map.h"

#include <GenApi/NodeCallback.h>
#include <algorithm>
#include <string>
#include <vector>

namespace koro::test
{

// The names of the nodes whose callbacks were called, sorted.
class Listener
{
public:
    void Changed(GENAPI_NAMESPACE::INode* node) { names.push_back(node->GetName().c_str()); }
    std::string Take()
    {
        std::sort(names.begin(), names.end());
        std::string text;
        for (const std::string& name : names)
            text += (text.empty() ? "" : " ") + name;
        names.clear();
        return text;
    }

private:
    std::vector<std::string> names;
};

inline void ListenToAll(const SmallMap& map, Listener& listener)
{
    GENAPI_NAMESPACE::NodeList_t nodes;
    map.map->GetNodes(nodes);
    for (GENAPI_NAMESPACE::INode* const node : nodes)
        GENAPI_NAMESPACE::Register(node, listener, &Listener::Changed);
}

} // namespace koro::test
