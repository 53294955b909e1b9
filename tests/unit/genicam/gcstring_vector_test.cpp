#include <Base/GCBase.h>
#include <GenApi/Container.h>
#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;

gcstring_vector Letters(const std::string& letters)
{
    gcstring_vector list;
    for (const char letter : letters)
        list.push_back(gcstring(1, letter));
    return list;
}

std::string Joined(const gcstring_vector& list)
{
    std::string text;
    for (const gcstring& element : list)
        text += element.c_str();
    return text;
}

TEST(GcStringVector, PastTheEndIsGenICamsOutOfRange)
{
    gcstring_vector list = Letters("ab");
    const gcstring_vector& constant = list;
    EXPECT_TRUE(list.at(1) == "b");
    EXPECT_THROW(list.at(2), OutOfRangeException);
    EXPECT_THROW(constant.at(2), OutOfRangeException);
}

TEST(GcStringVector, InsertsAndErasesByIteratorAndByIndex)
{
    gcstring_vector list = Letters("ac");
    EXPECT_TRUE(*list.insert(list.begin() + 1, "b") == "b");
    list.insert(0, "z");
    EXPECT_EQ(Joined(list), "zabc");
    EXPECT_TRUE(*list.erase(list.begin()) == "a");
    list.erase(2);
    EXPECT_EQ(Joined(list), "ab");
}

TEST(GcStringVector, ChangesItsLength)
{
    gcstring_vector list(2, "x");
    list.resize(3, "y");
    EXPECT_EQ(Joined(list), "xxy");
    list.resize(1);
    EXPECT_EQ(Joined(list), "x");
    list.assign(2, "q");
    EXPECT_EQ(Joined(list), "qq");
    list.assign(Letters("abc"));
    EXPECT_EQ(Joined(list), "abc");
    list.pop_back();
    EXPECT_TRUE(list.back() == "b");
    EXPECT_TRUE(list.front() == "a");
    list.clear();
    EXPECT_TRUE(list.empty());
    list.reserve(10);
    EXPECT_GE(list.capacity(), 10u);
    EXPECT_EQ(list.size(), 0u);
}

TEST(GcStringVector, KnowsWhetherItContainsAText)
{
    EXPECT_TRUE(Letters("ab").contains("b"));
    EXPECT_FALSE(Letters("ab").contains("c"));
}

TEST(GcStringVector, CopiesAreIndependent)
{
    gcstring_vector list = Letters("ab");
    const gcstring_vector copy(list);
    list[0] = "z";
    EXPECT_EQ(Joined(copy), "ab");
    EXPECT_EQ(Joined(list), "zb");
}

TEST(GcStringVector, IteratorsWalkAtRandom)
{
    gcstring_vector list = Letters("abcd");
    gcstring_vector::iterator position = list.begin();
    EXPECT_TRUE(*position++ == "a");
    EXPECT_TRUE(*++position == "c");
    EXPECT_TRUE(*position-- == "c");
    EXPECT_TRUE(*--position == "a");
    position += 3;
    EXPECT_TRUE(*position == "d");
    position -= 2;
    EXPECT_TRUE(position[1] == "c");
    EXPECT_EQ(position->length(), 1u);
    EXPECT_EQ(list.end() - position, 3);
    EXPECT_TRUE(position < list.end());
    EXPECT_TRUE(list.end() > position);
    EXPECT_TRUE(position <= position && position >= position);
    const gcstring_vector::const_iterator constant = position;
    EXPECT_TRUE(constant == position);
    EXPECT_TRUE(constant != list.begin());
}

TEST(NodeVector, WorksWithAlgorithmsAndThrowsTheStandardOutOfRange)
{
    GENAPI_NAMESPACE::node_vector nodes(2);
    EXPECT_EQ(std::count(nodes.begin(), nodes.end(), nullptr), 2);
    EXPECT_EQ(nodes[1], nullptr);
    EXPECT_THROW(nodes.at(2), std::out_of_range);
    GENAPI_NAMESPACE::value_vector values;
    values.resize(3, nullptr);
    EXPECT_EQ(values.size(), 3u);
}

} // namespace
