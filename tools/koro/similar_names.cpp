#include "tools/koro/similar_names.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace koro::tool
{

namespace
{

// Longer names are nobody's typing errors.
constexpr size_t longestName = 128;

std::string LowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

// One more wrong letter for each three that the wish has.
size_t MostErrors(const std::string& wish)
{
    return std::clamp<size_t>(wish.size() / 3, 1, 4);
}

// A small number for a name that is near; no number for one that is not alike.
constexpr size_t notAlike = static_cast<size_t>(-1);

size_t Rank(const std::string& name, const std::string& wish)
{
    const size_t most = MostErrors(wish);
    const size_t distance = EditDistance(name, wish, most);
    if (distance <= most) return distance;
    if (name.size() > longestName) return notAlike;
    const bool holds = name.find(wish) != name.npos || (name.size() > 3 && wish.find(name) != wish.npos);
    return holds ? most + 1 : notAlike;
}

} // namespace

size_t EditDistance(const std::string& left, const std::string& right, size_t most)
{
    const size_t longer = std::max(left.size(), right.size());
    if (longer > longestName || longer - std::min(left.size(), right.size()) > most) return most + 1;
    const std::string one = LowerCase(left);
    const std::string other = LowerCase(right);
    std::vector<size_t> beforeLast(other.size() + 1);
    std::vector<size_t> last(other.size() + 1);
    std::vector<size_t> row(other.size() + 1);
    for (size_t j = 0; j <= other.size(); ++j)
        last[j] = j;
    for (size_t i = 1; i <= one.size(); ++i)
    {
        row[0] = i;
        for (size_t j = 1; j <= other.size(); ++j)
        {
            const size_t changed = last[j - 1] + (one[i - 1] == other[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, changed});
            const bool swapped = i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1];
            if (swapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        std::swap(beforeLast, last);
        std::swap(last, row);
    }
    return std::min(last.back(), most + 1);
}

std::vector<std::string> SimilarNames(const std::vector<std::string>& names, const std::string& wish, size_t number)
{
    const std::string lowerWish = LowerCase(wish);
    std::vector<std::pair<size_t, std::string>> ranked;
    for (const std::string& name : names)
    {
        const size_t rank = Rank(LowerCase(name), lowerWish);
        if (rank != notAlike) ranked.emplace_back(rank, name);
    }
    std::stable_sort(
        ranked.begin(), ranked.end(), [](const auto& one, const auto& other) { return one.first < other.first; });
    std::vector<std::string> similar;
    for (size_t i = 0; i < std::min(number, ranked.size()); ++i)
        similar.push_back(std::move(ranked[i].second));
    return similar;
}

} // namespace koro::tool
