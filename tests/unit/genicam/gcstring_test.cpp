#include <Base/GCBase.h>
#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;

const gcstring withZero("a\0b", 3);

TEST(GcString, NullPointersAreEmptyTexts)
{
    const char* const nothing = nullptr;
    EXPECT_TRUE(gcstring(nothing).empty());
    EXPECT_TRUE(gcstring(nothing, 5).empty());
    EXPECT_TRUE(gcstring("x").assign(nothing).empty());
    EXPECT_TRUE(gcstring("") == nothing);
    EXPECT_TRUE(gcstring("x") != nothing);
    EXPECT_TRUE(gcstring("x") + nothing == "x");
    EXPECT_TRUE(nothing + gcstring("x") == "x");
    EXPECT_TRUE((gcstring("x") += nothing) == "x");
    EXPECT_EQ(gcstring("x").find(nothing), 0u);
}

TEST(GcString, EmbeddedZerosAreKeptAndCounted)
{
    EXPECT_EQ(withZero.length(), 3u);
    EXPECT_EQ(withZero.size(), 3u);
    EXPECT_EQ(withZero.c_str()[2], 'b');
    EXPECT_EQ(withZero.c_str()[3], '\0');
    EXPECT_FALSE(withZero == "a");
    EXPECT_TRUE(withZero == gcstring(withZero));
    EXPECT_EQ((withZero + withZero).length(), 6u);
}

TEST(GcString, RepeatsALetter)
{
    EXPECT_TRUE(gcstring(3, 'x') == "xxx");
    EXPECT_TRUE(gcstring("a").append(2, 'b') == "abb");
    EXPECT_TRUE(gcstring("a").assign(2, 'b') == "bb");
}

TEST(GcString, AssignmentReplacesAndAppendingExtends)
{
    gcstring text("ab");
    EXPECT_TRUE(text.append(gcstring("cd")) == "abcd");
    EXPECT_TRUE(text.append(text) == "abcdabcd");
    EXPECT_TRUE(text.assign(gcstring("x")) == "x");
    EXPECT_TRUE(text.assign("yz") == "yz");
    EXPECT_TRUE(text.assign("yz", 1) == "y");
    text = gcstring("new");
    EXPECT_TRUE(text == "new");
    text = static_cast<const gcstring&>(text);
    EXPECT_TRUE(text == "new");
}

TEST(GcString, ComparesByBytes)
{
    EXPECT_LT(gcstring("a").compare("b"), 0);
    EXPECT_EQ(gcstring("a").compare("a"), 0);
    EXPECT_GT(gcstring("\xe4").compare("a"), 0) << "bytes are unsigned";
    EXPECT_TRUE(gcstring("a") < gcstring("b"));
    EXPECT_TRUE(gcstring("b") > gcstring("a"));
    EXPECT_FALSE(gcstring("a") < gcstring("a"));
    EXPECT_TRUE(gcstring("a") != gcstring("b"));
    EXPECT_TRUE(gcstring("a") != "b");
}

TEST(GcString, FindsLettersAndTexts)
{
    const gcstring text("abcabc");
    EXPECT_EQ(text.find('b'), 1u);
    EXPECT_EQ(text.find('b', 2), 4u);
    EXPECT_EQ(text.find('x'), gcstring::npos);
    EXPECT_EQ(text.find(gcstring("ca")), 2u);
    EXPECT_EQ(text.find(gcstring("bc"), 2), 4u);
    EXPECT_EQ(text.find(gcstring("bx"), 0, 1), 1u) << "only the first letter counts";
    EXPECT_EQ(text.find("ca"), 2u);
    EXPECT_EQ(text.find("bc", 2), 4u);
    EXPECT_EQ(text.find("bx", 2, 1), 4u);
    EXPECT_EQ(text.find("b", 100), gcstring::npos);
}

TEST(GcString, FindsSetsOfLettersFromBothEnds)
{
    const gcstring text("aabbcc");
    EXPECT_EQ(text.find_first_of("cb"), 2u);
    EXPECT_EQ(text.find_first_of("a", 2), gcstring::npos);
    EXPECT_EQ(text.find_first_not_of("a"), 2u);
    EXPECT_EQ(text.find_first_not_of("b", 2), 4u);
    EXPECT_EQ(text.find_last_of(gcstring("ab")), 3u);
    EXPECT_EQ(text.find_last_of('b', 2), 2u);
    EXPECT_EQ(text.find_last_not_of(gcstring("c")), 3u);
    EXPECT_EQ(text.find_last_not_of('c', 1), 1u);
}

TEST(GcString, GrowsWithZeroBytes)
{
    gcstring text("ab");
    text.resize(4);
    EXPECT_EQ(std::string(text.c_str(), text.size()), std::string("ab\0\0", 4));
    text.resize(1);
    EXPECT_TRUE(text == "a");
}

TEST(GcString, PartsPastTheEndAreTheStandardOutOfRange)
{
    gcstring text("abc");
    EXPECT_TRUE(text.substr(1) == "bc");
    EXPECT_TRUE(text.substr(1, 1) == "b");
    EXPECT_TRUE(text.substr(3).empty());
    EXPECT_THROW(text.substr(4), std::out_of_range);
    EXPECT_THROW(text.erase(4), std::out_of_range);
    EXPECT_TRUE(text.erase(1, 1) == "ac");
    EXPECT_TRUE(text.erase(1) == "a");
}

TEST(GcString, AddsTextsAndLetters)
{
    gcstring text("a");
    text += gcstring("b");
    text += "c";
    text += 'd';
    EXPECT_TRUE(text == "abcd");
    EXPECT_TRUE(gcstring("a") + gcstring("b") == "ab");
    EXPECT_TRUE(gcstring("a") + "b" == "ab");
    EXPECT_TRUE("a" + gcstring("b") == "ab");
}

TEST(GcString, AddingToAConstantGivesANewText)
{
    const gcstring text("a");
    EXPECT_TRUE((text += gcstring("b")) == "ab");
    EXPECT_TRUE((text += 'b') == "ab");
    EXPECT_TRUE(text == "a");
}

TEST(GcString, ConvertsToAPointerAndIsIndexedThroughIt)
{
    const gcstring text("abc");
    const char* const pointer = text;
    EXPECT_STREQ(pointer, "abc");
    EXPECT_EQ(text[static_cast<size_t>(1)], 'b');
}

TEST(GcString, SwapsAndReserves)
{
    gcstring left("left");
    gcstring right("right");
    left.swap(right);
    left.reserve(1000);
    left.reserve();
    EXPECT_TRUE(left == "right");
    EXPECT_TRUE(right == "left");
    EXPECT_GT(left.max_size(), 1000u);
    EXPECT_EQ(gcstring::_npos(), GCSTRING_NPOS);
}

TEST(GcString, ReadsLinesAndWordsFromStreams)
{
    std::istringstream stream("first line\nsecond;third word");
    gcstring text;
    getline(stream, text);
    EXPECT_TRUE(text == "first line");
    getline(stream, text, ';');
    EXPECT_TRUE(text == "second");
    stream >> text;
    EXPECT_TRUE(text == "third");
}

TEST(GcString, PrintsUpToTheFirstZero)
{
    std::ostringstream stream;
    stream << withZero;
    EXPECT_EQ(stream.str(), "a");
}

TEST(GcString, IsMadeOnTheHeapAndInPlace)
{
    gcstring* const heap = new gcstring("heap");
    EXPECT_TRUE(*heap == "heap");
    delete heap;

    alignas(gcstring) unsigned char place[sizeof(gcstring)];
    gcstring* const placed = new (place) gcstring("place");
    EXPECT_EQ(static_cast<void*>(placed), static_cast<void*>(place));
    EXPECT_TRUE(*placed == "place");
    placed->~gcstring();
}

TEST(GcString, FailedAllocationIsReportedWithItsPlace)
{
    try
    {
        ThrowBadAlloc("/x/y.cpp", 5);
        FAIL() << "nothing thrown";
    }
    catch (const BadAllocException& exception)
    {
        EXPECT_EQ(exception.GetSourceLine(), 5u);
        EXPECT_STREQ(exception.GetSourceFileName(), "/x/y.cpp");
    }
}

} // namespace
