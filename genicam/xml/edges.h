// GatherEdges: builds lists of nodes for each node from the edges between them.
#pragma once

#include "xml/description.h"

namespace GENAPI_NAMESPACE::runtime
{

// `edges` calls its argument with (from, to), all edges of one `to` in a row; it is called twice. The list of a node
// contains each `to` once.
template <class Edges>
void GatherEdges(NodeLists& lists, NodeIndex count, const Edges& edges)
{
    lists.firsts.assign(count + 1, 0);
    std::vector<NodeIndex> last(count, noNode); // the last `to` of each `from`
    edges([&](NodeIndex from, NodeIndex to) {
        if (last[from] == to) return;
        last[from] = to;
        ++lists.firsts[from + 1];
    });
    for (NodeIndex node = 0; node < count; ++node)
        lists.firsts[node + 1] += lists.firsts[node];
    lists.nodes.resize(lists.firsts[count]);
    last.assign(count, noNode);
    std::vector<uint32_t> next(lists.firsts.begin(), lists.firsts.end() - 1);
    edges([&](NodeIndex from, NodeIndex to) {
        if (last[from] == to) return;
        last[from] = to;
        lists.nodes[next[from]++] = to;
    });
}

} // namespace GENAPI_NAMESPACE::runtime
