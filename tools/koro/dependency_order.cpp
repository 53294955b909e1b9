#include "tools/koro/dependency_order.h"

#include <algorithm>
#include <utility>

namespace koro::tool
{

namespace
{

// Tarjan's search for what depends on each other, without recursion: a description may nest as it likes.
class DependencyOrder
{
public:
    explicit DependencyOrder(const std::vector<std::vector<size_t>>& edges)
        : dependencies(edges), numbers(edges.size(), 0), lowest(edges.size(), 0), isOpen(edges.size(), false)
    {}

    std::vector<size_t> Run()
    {
        for (size_t start = 0; start < dependencies.size(); ++start)
        {
            if (numbers[start] == 0) From(start);
        }
        return std::move(order);
    }

private:
    struct Step
    {
        size_t node;
        size_t next; // of its dependencies
    };

    void From(size_t start)
    {
        std::vector<Step> steps;
        Open(start, steps);
        while (!steps.empty())
        {
            Step& step = steps.back();
            if (step.next < dependencies[step.node].size())
            {
                const size_t needed = dependencies[step.node][step.next++];
                if (numbers[needed] == 0)
                    Open(needed, steps);
                else if (isOpen[needed])
                    lowest[step.node] = std::min(lowest[step.node], numbers[needed]);
                continue;
            }
            const size_t done = step.node;
            steps.pop_back();
            if (!steps.empty()) lowest[steps.back().node] = std::min(lowest[steps.back().node], lowest[done]);
            if (lowest[done] == numbers[done]) Close(done);
        }
    }

    void Open(size_t node, std::vector<Step>& steps)
    {
        numbers[node] = lowest[node] = ++count;
        isOpen[node] = true;
        open.push_back(node);
        steps.push_back({node, 0});
    }

    // All that is open since `first` depends on each other.
    void Close(size_t first)
    {
        const auto begin = std::find(open.rbegin(), open.rend(), first).base() - 1;
        std::sort(begin, open.end());
        for (auto node = begin; node != open.end(); ++node)
        {
            isOpen[*node] = false;
            order.push_back(*node);
        }
        open.erase(begin, open.end());
    }

    const std::vector<std::vector<size_t>>& dependencies;
    std::vector<size_t> numbers; // from 1; 0 for what was not visited
    std::vector<size_t> lowest;  // number that can be reached
    std::vector<bool> isOpen;
    std::vector<size_t> open;
    std::vector<size_t> order;
    size_t count = 0;
};

} // namespace

std::vector<size_t> DependenciesFirst(const std::vector<std::vector<size_t>>& dependencies)
{
    return DependencyOrder(dependencies).Run();
}

} // namespace koro::tool
