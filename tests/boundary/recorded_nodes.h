// RecordedNodes: the answers of the reference runtime about every node of one description, read from its dump.
#pragma once

#include <istream>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace koro::test
{

struct RecordedNodes
{
    using Answers = std::map<std::string, std::string>; // by label; "!Class" stands for an exception

    explicit RecordedNodes(std::istream& dump)
    {
        for (std::string line; std::getline(dump, line);)
        {
            if (line.rfind("FAILED ", 0) == 0)
                failure = line.substr(7, line.find(':') - 7);
            else if (line.rfind("numnodes ", 0) == 0)
                count = std::stoul(line.substr(line.find(" list ") + 6));
            else if (line.rfind("connect ", 0) == 0)
                ports.push_back(line.substr(8, line.rfind(' ') - 8));
            else if (line.rfind("  ", 0) == 0)
                nodes.back().second.emplace(line.substr(2, line.find('=') - 2), line.substr(line.find('=') + 1));
            else if (line.rfind("model=", 0) != 0)
                nodes.emplace_back(line, Answers{});
        }
    }

    bool Loads() const { return count > 0; }

    std::string failure; // class of the exception that ended it
    std::size_t count = 0;
    std::vector<std::string> ports;
    std::vector<std::pair<std::string, Answers>> nodes; // in the order in which they were asked
};

} // namespace koro::test
