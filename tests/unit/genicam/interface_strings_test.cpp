// gcstring, the lists and the exceptions: every operation with its exact type.
#include "tests/unit/genicam/interface_proof.h"

#include <Base/GCBase.h>
#include <GenApi/Container.h>
#include <gtest/gtest.h>
#include <iterator>
#include <numeric>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using GENAPI_NAMESPACE::INode;
using GENAPI_NAMESPACE::IValue;
using GENAPI_NAMESPACE::node_vector;
using GENAPI_NAMESPACE::value_vector;

static_assert(std::has_virtual_destructor_v<gcstring> && std::is_convertible_v<const char*, gcstring>);
static_assert(std::is_constructible_v<gcstring, const char*, size_t>);
static_assert(std::is_constructible_v<gcstring, size_t, char>);
static_assert(std::is_convertible_v<gcstring, const char*>);
static_assert(!std::is_constructible_v<gcstring, std::string> && !std::is_assignable_v<gcstring&, std::string>);
static_assert(is_same<decltype(gcstring::npos), const size_t> && gcstring::npos == size_t(-1));
static_assert(is_same<decltype(&gcstring::_npos), size_t (*)()>);

HAS(gcstring, append, gcstring&, (const gcstring&));
HAS(gcstring, append, gcstring&, (size_t, char));
HAS(gcstring, assign, gcstring&, (const gcstring&));
HAS(gcstring, assign, gcstring&, (size_t, char));
HAS(gcstring, assign, gcstring&, (const char*));
HAS(gcstring, assign, gcstring&, (const char*, size_t));
HAS(gcstring, compare, int, (const gcstring&) const);
HAS(gcstring, c_str, const char*, () const);
HAS(gcstring, empty, bool, () const);
HAS(gcstring, find, size_t, (char, size_t) const);
HAS(gcstring, find, size_t, (const gcstring&, size_t) const);
HAS(gcstring, find, size_t, (const gcstring&, size_t, size_t) const);
HAS(gcstring, find, size_t, (const char*, size_t) const);
HAS(gcstring, find, size_t, (const char*, size_t, size_t) const);
HAS(gcstring, length, size_t, () const);
HAS(gcstring, size, size_t, () const);
HAS(gcstring, resize, void, (size_t));
HAS(gcstring, reserve, void, (size_t));
HAS(gcstring, erase, gcstring&, (size_t, size_t));
HAS(gcstring, max_size, size_t, () const);
HAS(gcstring, substr, gcstring, (size_t, size_t) const);
HAS(gcstring, find_first_of, size_t, (const gcstring&, size_t) const);
HAS(gcstring, find_first_not_of, size_t, (const gcstring&, size_t) const);
HAS(gcstring, find_last_of, size_t, (const gcstring&, size_t) const);
HAS(gcstring, find_last_of, size_t, (char, size_t) const);
HAS(gcstring, find_last_not_of, size_t, (const gcstring&, size_t) const);
HAS(gcstring, find_last_not_of, size_t, (char, size_t) const);
HAS(gcstring, swap, void, (gcstring&));
HAS(gcstring, operator==, bool, (const gcstring&) const);
HAS(gcstring, operator==, bool, (const char*) const);
HAS(gcstring, operator!=, bool, (const gcstring&) const);
HAS(gcstring, operator!=, bool, (const char*) const);
HAS(gcstring, operator<, bool, (const gcstring&) const);
HAS(gcstring, operator>, bool, (const gcstring&) const);
HAS(gcstring, operator+=, gcstring&, (const gcstring&));
HAS(gcstring, operator+=, gcstring, (const gcstring&) const);
HAS(gcstring, operator+=, gcstring&, (const char*));
HAS(gcstring, operator+=, gcstring&, (char));
HAS(gcstring, operator+=, gcstring, (char) const);
HAS(gcstring, operator=, gcstring&, (const gcstring&));
static_assert(is_same<decltype(&::ThrowBadAlloc), void (*)(const char*, int)>);

// All that are overridden here are virtual.
struct OtherString : gcstring
{
    gcstring& append(const gcstring&) override { return *this; }
    gcstring& append(size_t, char) override { return *this; }
    gcstring& assign(const gcstring&) override { return *this; }
    gcstring& assign(size_t, char) override { return *this; }
    gcstring& assign(const char*) override { return *this; }
    gcstring& assign(const char*, size_t) override { return *this; }
    int compare(const gcstring&) const override { return 0; }
    const char* c_str() const override { return "other"; }
    bool empty() const override { return false; }
    size_t find(char, size_t) const override { return 0; }
    size_t find(const gcstring&, size_t) const override { return 0; }
    size_t find(const gcstring&, size_t, size_t) const override { return 0; }
    size_t find(const char*, size_t) const override { return 0; }
    size_t find(const char*, size_t, size_t) const override { return 0; }
    size_t length() const override { return 5; }
    size_t size() const override { return 5; }
    void resize(size_t) override {}
    void reserve(size_t) override {}
    gcstring& erase(size_t, size_t) override { return *this; }
    size_t max_size() const override { return 5; }
    gcstring substr(size_t, size_t) const override { return ""; }
    size_t find_first_of(const gcstring&, size_t) const override { return 0; }
    size_t find_first_not_of(const gcstring&, size_t) const override { return 0; }
    size_t find_last_of(const gcstring&, size_t) const override { return 0; }
    size_t find_last_of(char, size_t) const override { return 0; }
    size_t find_last_not_of(const gcstring&, size_t) const override { return 0; }
    size_t find_last_not_of(char, size_t) const override { return 0; }
    void swap(gcstring&) override {}
};
static_assert(!std::is_abstract_v<OtherString>);

HAS(gcstring_vector, assign, void, (size_t, const gcstring&));
HAS(gcstring_vector, assign, void, (const gcstring_vector&));
HAS(gcstring_vector, clear, void, ());
HAS(gcstring_vector, erase, gcstring_vector::iterator, (gcstring_vector::iterator));
HAS(gcstring_vector, erase, void, (size_t));
HAS(gcstring_vector, at, gcstring&, (size_t));
HAS(gcstring_vector, at, const gcstring&, (size_t) const);
HAS(gcstring_vector, back, gcstring&, ());
HAS(gcstring_vector, back, const gcstring&, () const);
HAS(gcstring_vector, front, gcstring&, ());
HAS(gcstring_vector, front, const gcstring&, () const);
HAS(gcstring_vector, begin, gcstring_vector::iterator, ());
HAS(gcstring_vector, begin, gcstring_vector::const_iterator, () const);
HAS(gcstring_vector, end, gcstring_vector::iterator, ());
HAS(gcstring_vector, end, gcstring_vector::const_iterator, () const);
HAS(gcstring_vector, capacity, size_t, () const);
HAS(gcstring_vector, max_size, size_t, () const);
HAS(gcstring_vector, size, size_t, () const);
HAS(gcstring_vector, empty, bool, () const);
HAS(gcstring_vector, insert, gcstring_vector::iterator, (gcstring_vector::iterator, const gcstring&));
HAS(gcstring_vector, insert, void, (size_t, const gcstring&));
HAS(gcstring_vector, pop_back, void, ());
HAS(gcstring_vector, push_back, void, (const gcstring&));
HAS(gcstring_vector, resize, void, (size_t, const gcstring&));
HAS(gcstring_vector, reserve, void, (size_t));
HAS(gcstring_vector, contains, bool, (const gcstring&) const);
HAS(gcstring_vector, operator[], gcstring&, (size_t));
HAS(gcstring_vector, operator[], const gcstring&, (size_t) const);
static_assert(!std::is_convertible_v<size_t, gcstring_vector> && std::is_constructible_v<gcstring_vector, size_t>);
static_assert(std::is_constructible_v<gcstring_vector, size_t, gcstring>);
static_assert(std::has_virtual_destructor_v<gcstring_vector>);
static_assert(std::is_base_of_v<gcstring_vector::const_iterator, gcstring_vector::iterator>);

HAS(node_vector, resize, void, (size_t));
HAS(node_vector, push_back, void, (INode* const&));
HAS(node_vector, at, INode*&, (size_t));
HAS(node_vector, operator[], INode* const&, (size_t) const);
HAS(value_vector, resize, void, (size_t, IValue*));
HAS(value_vector, push_back, void, (IValue* const&));
HAS(value_vector, size, size_t, () const);
static_assert(!std::is_convertible_v<size_t, node_vector> && !std::is_convertible_v<size_t, value_vector>);
static_assert(is_same<std::iterator_traits<node_vector::iterator>::iterator_category, std::random_access_iterator_tag>);
static_assert(is_same<std::iterator_traits<node_vector::iterator>::value_type, INode*>);
static_assert(is_same<std::iterator_traits<node_vector::iterator>::difference_type, ptrdiff_t>);
static_assert(is_same<std::iterator_traits<node_vector::iterator>::pointer, INode**>);
static_assert(is_same<std::iterator_traits<node_vector::iterator>::reference, INode*&>);
static_assert(is_same<std::iterator_traits<value_vector::const_iterator>::value_type, IValue*>);
static_assert(is_same<std::iterator_traits<value_vector::const_iterator>::reference, IValue* const&>);

HAS(GenericException, GetDescription, const char*, () const);
HAS(GenericException, GetSourceFileName, const char*, () const);
HAS(GenericException, GetSourceLine, unsigned int, () const);
HAS(GenericException, what, const char*, () const);
static_assert(std::has_virtual_destructor_v<GenericException> && std::is_nothrow_destructible_v<GenericException>);
static_assert(noexcept(std::declval<const GenericException&>().what()));
static_assert(std::is_constructible_v<GenericException, const char*, const char*, unsigned int>);

// Direct children with the three constructors.
template <class E>
constexpr bool isOneOfTheFamily = std::is_base_of_v<GenericException, E>&& std::is_copy_constructible_v<E>&&
    std::is_copy_assignable_v<E>&& std::is_constructible_v<E, const char*, const char*, int>&&
        std::is_constructible_v<E, const char*, const char*, int, const char*>&&
            std::is_constructible_v<E, const char*, const char*, int, const char*, const char*, const char*>;
static_assert(isOneOfTheFamily<BadAllocException> && isOneOfTheFamily<InvalidArgumentException>);
static_assert(isOneOfTheFamily<OutOfRangeException> && isOneOfTheFamily<PropertyException>);
static_assert(isOneOfTheFamily<RuntimeException> && isOneOfTheFamily<LogicalErrorException>);
static_assert(isOneOfTheFamily<AccessException> && isOneOfTheFamily<TimeoutException>);
static_assert(isOneOfTheFamily<DynamicCastException>);
static_assert(!std::is_base_of_v<RuntimeException, AccessException>);

DECLARE_EXCEPTION(OwnException);
static_assert(isOneOfTheFamily<OwnException>);

TEST(GcStringInterface, OperationsAreVirtual)
{
    const OtherString text;
    const gcstring& base = text;
    EXPECT_STREQ(base.c_str(), "other");
    EXPECT_EQ(base.size(), 5u);
}

TEST(GcStringInterface, DefaultsReachFromEndToEnd)
{
    gcstring text("abcabc");
    EXPECT_EQ(text.find('c'), 2u);
    EXPECT_EQ(text.find_last_of('a'), 3u);
    EXPECT_EQ(text.find_last_not_of('c'), 4u);
    EXPECT_EQ(text.find_first_of("c"), 2u);
    EXPECT_EQ(text.find_first_not_of("a"), 1u);
    EXPECT_TRUE(text.substr() == "abcabc");
    text.reserve();
    EXPECT_TRUE(text.erase(2) == "ab");
}

TEST(Lists, NodesAndValuesWorkInLoopsAndAlgorithms)
{
    node_vector nodes(3);
    size_t count = 0;
    for (INode* const node : nodes)
        count += node == nullptr;
    EXPECT_EQ(count, 3u);
    nodes.resize(1);
    EXPECT_EQ(std::distance(nodes.begin(), nodes.end()), 1);
    value_vector values;
    values.resize(2, nullptr);
    values.insert(0, nullptr);
    values.erase(values.begin());
    EXPECT_EQ(values.size(), 2u);
    const value_vector copy(values);
    values.clear();
    EXPECT_EQ(copy.size(), 2u);
    EXPECT_TRUE(values.empty());
}

TEST(ExceptionFamily, OwnOnesJoinByTheMacro)
{
    try
    {
        throw OwnException("It broke", "a.cpp", 3, "OwnException");
    }
    catch (const GenericException& exception)
    {
        EXPECT_STREQ(exception.what(), "It broke : OwnException thrown (file 'a.cpp', line 3)");
    }
}

} // namespace
