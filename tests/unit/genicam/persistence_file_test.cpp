#include "tests/support/feature_file_forms.h"
#include "tests/unit/genicam/persistence_bag.h"

#include <gtest/gtest.h>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Fill;
using koro::test::firstLine;
using koro::test::Records;
using koro::test::SmallMap;

// The records that a file gives.
std::string Read(const std::string& file)
{
    CFeatureBag bag;
    std::istringstream stream(file);
    stream >> bag;
    EXPECT_TRUE(stream.eof());
    EXPECT_FALSE(stream.fail());
    return Records(bag);
}

// What is wrong with a file; a failure keeps the bag as it was.
std::string Refusal(const std::string& file)
{
    CFeatureBag bag;
    Fill(bag, "Former\t1\n");
    std::istringstream stream(file);
    try
    {
        stream >> bag;
    }
    catch (const RuntimeException& exception)
    {
        EXPECT_EQ(Records(bag), "Former\t1\n");
        return exception.GetDescription();
    }
    return "nothing thrown";
}

const std::string magic = firstLine;

TEST(FeatureFile, ReadsWhatItWrites)
{
    const std::string records = "A\t1\nB\t{S=x\tT=y}\ttext with\ttabs = and }\nC\t#1\nD\t{open\nE\t{a\tb\n";
    EXPECT_EQ(Read(magic + records), records);
}

TEST(FeatureFile, CommonFormIsReadAsByEveryReader)
{
    for (const koro::test::FeatureFileForm& form : koro::test::featureFileForms)
        EXPECT_EQ(Read(magic + form.lines), form.records) << form.lines;
}

TEST(FeatureFile, LineEndsOfBothKindsAreRead)
{
    EXPECT_EQ(
        Read("# {05D8C294-F295-4dfb-9D01-096BD04049F4}\r\nA\t1\r\n# B\r\n\r\nC\t{S=1}\t2\r\n"), "A\t1\nC\t{S=1}\t2\n");
}

TEST(FeatureFile, CommentsAndBlankLinesArePassedOver)
{
    EXPECT_EQ(
        Read(magic + "#\n# long " + std::string(5000, 'x') + "\nA\t1\n\n# one\n# two\n \t \nB\t2\n"), "A\t1\nB\t2\n");
}

TEST(FeatureFile, LastLineMayEndTheFile)
{
    EXPECT_EQ(Read(magic + "A\t1\nB\t2"), "A\t1\nB\t2\n");
}

TEST(FeatureFile, MagicMayStandInTheMiddleOfTheFirstLine)
{
    EXPECT_EQ(Read("one " GENAPI_PERSISTENCE_MAGIC " two\nA\t1\n"), "A\t1\n");
}

TEST(FeatureFile, NamesAreTrimmedAndValuesAreNot)
{
    EXPECT_EQ(Read(magic + "  A \t 1 \n"), "A\t 1 \n");
}

TEST(FeatureFile, ReadingStopsNeitherAtCarriageReturnsNorAtBlanksBeforeComments)
{
    EXPECT_EQ(Read(magic + "A\t1\r2\r\r\n  # comment\nB\t2\n"), "A\t12\nB\t2\n");
}

TEST(FeatureFile, BracesWithoutSelectorsBelongToTheValue)
{
    const SmallMap map("<String Name=\"A\"><Value>x</Value></String>");
    for (const char* const value : {"{", "{}", "{}\tx", "{a}\tx", "{a=1\t\tb=2}\tx", "{a=1", "{a=1}x", "x{a=1}\tx"})
    {
        CFeatureBag bag;
        Fill(bag, "A\t" + std::string(value) + "\n");
        EXPECT_TRUE(bag.LoadFromBag(map.map)) << value;
        EXPECT_STREQ(map.Value("A")->ToString().c_str(), value);
        EXPECT_EQ(Records(bag), "A\t" + std::string(value) + "\n");
    }
}

TEST(FeatureFile, SelectorsAreReadFromTheirBraces)
{
    const SmallMap map("<String Name=\"A\"><Value>x</Value></String><String Name=\"S\"><Value>x</Value></String>"
                       "<String Name=\"T=U\"><Value>x</Value></String>");
    CFeatureBag bag;
    Fill(bag, "A\t{S=one\tT=U=two\t}\t{S=x}\tvalue\n");
    EXPECT_TRUE(bag.LoadFromBag(map.map));
    EXPECT_STREQ(map.Value("A")->ToString().c_str(), "{S=x}\tvalue");
    EXPECT_STREQ(map.Value("S")->ToString().c_str(), "one");
    EXPECT_EQ(Records(bag), "A\t{S=one\tT=U=two}\t{S=x}\tvalue\n");
}

TEST(FeatureFile, StreamAtItsEndIsRefused)
{
    std::istringstream stream("");
    stream.get();
    stream.clear(std::ios_base::eofbit);
    CFeatureBag bag;
    try
    {
        stream >> bag;
        FAIL() << "nothing thrown";
    }
    catch (const RuntimeException& exception)
    {
        EXPECT_STREQ(exception.GetDescription(), "The stream is eof");
    }
    std::istream broken(nullptr);
    EXPECT_THROW(broken >> bag, RuntimeException);
}

TEST(FeatureFile, OtherFilesAreRefused)
{
    const std::string missing =
        "The stream is not a GenApi feature stream since it is missing the magic GUID in the first line";
    EXPECT_EQ(Refusal(""), missing);
    EXPECT_EQ(Refusal("A\t1\n"), missing);
    EXPECT_EQ(Refusal("\n" + magic + "A\t1\n"), missing);
    EXPECT_EQ(
        Refusal("# " GENAPI_PERSISTENCE_MAGIC_FEATUREBAGGER "\n"),
        "The stream has been created using the CFeatureBagger class thus must be restored using the CFeatureBagger "
        "class as well");
}

TEST(FeatureFile, LineWithoutATabIsExcessData)
{
    EXPECT_EQ(Refusal(magic + "A\t1\nB\n"), "The stream holds excess data");
}

TEST(FeatureFile, RecordNeedsANameAndAValue)
{
    EXPECT_EQ(Refusal(magic + "A\t\n"), "The stream holds incomplete key - value - set");
    EXPECT_EQ(Refusal(magic + " \t1\n"), "The stream holds incomplete key - value - set");
    EXPECT_EQ(Refusal(magic + "A\t{S=1}\t\n"), "The stream holds incomplete key - value - set");
}

TEST(FeatureFile, ZeroBytesAreRefused)
{
    EXPECT_EQ(Refusal(magic + "A\t1" + std::string(1, '\0') + "2\n"), "The stream holds a zero byte");
    EXPECT_EQ(Refusal(magic + "# " + std::string(1, '\0') + "\n"), "The stream holds a zero byte");
}

TEST(FeatureFile, LinesAreBounded)
{
    const size_t most = 16 << 20;
    EXPECT_EQ(
        Refusal(magic + "A\t" + std::string(most, 'x') + "\n"), "The stream holds a line of more than 16777216 bytes");
    const std::string value(most - 2, 'x');
    EXPECT_EQ(Read(magic + "A\t" + value + "\n").size(), most + 1);
}

TEST(FeatureFile, RecordsAreBounded)
{
    std::string file = magic;
    for (int i = 0; i < (1 << 20); ++i)
        file += "A\t1\n";
    EXPECT_EQ(Read(file).size(), file.size() - magic.size());
    EXPECT_EQ(Refusal(file + "A\t1\n"), "A feature bag takes at most 1048576 records");
}

// Comments without end.
class EndlessStream : public std::streambuf
{
public:
    EndlessStream() : block(1 << 16, '#')
    {
        for (size_t i = 1; i < block.size(); i += 80)
            block[i] = '\n';
    }
    int_type underflow() override
    {
        static char first[] = GENAPI_PERSISTENCE_MAGIC "\n";
        if (!started) setg(first, first, first + sizeof first - 1);
        if (started) setg(block.data(), block.data(), block.data() + block.size());
        started = true;
        return traits_type::to_int_type(*gptr());
    }

private:
    std::string block;
    bool started = false;
};

TEST(FeatureFile, FileWithoutEndIsRefused)
{
    EndlessStream bytes;
    std::istream stream(&bytes);
    CFeatureBag bag;
    EXPECT_THROW(stream >> bag, RuntimeException);
}

TEST(FeatureFile, InfoStaysOnOneLine)
{
    CFeatureBag bag;
    bag.SetInfo("one\ntwo\r\nA\t1");
    EXPECT_STREQ(
        bag.ToString().c_str(), "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n# GenApi persistence file (version 3.4.0)\n"
                                "# one two  A\t1\n");
    Fill(bag, "B\t1\n");
    EXPECT_STREQ(bag.ToString().c_str(), "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\nB\t1\n") << "read without an info";
}

TEST(FeatureFile, HelpersOfTheHeaderWork)
{
    std::istringstream stream("# one\n#\nrest");
    EatComments(stream);
    std::string rest;
    stream >> rest;
    EXPECT_EQ(rest, "rest");
    gcstring text("\t a b \r\n");
    TrimSpace(text);
    EXPECT_STREQ(text.c_str(), "a b");
    text = " \t";
    TrimSpace(text);
    EXPECT_STREQ(text.c_str(), "");
}

} // namespace
