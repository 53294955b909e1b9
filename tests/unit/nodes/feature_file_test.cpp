#include "nodes/feature_file.h"
#include "tests/support/feature_file_forms.h"

#include <Base/GCException.h>
#include <GenApi/SelectorState.h>
#include <gtest/gtest.h>
#include <list>
#include <sstream>
#include <string>

namespace koro::test
{

using namespace internal;
using namespace GENAPI_NAMESPACE;

namespace
{

const std::string magic = "{05D8C294-F295-4dfb-9D01-096BD04049F4}";
const std::string head = "# " + magic + "\n";

// Keeps what the reader puts in as "name{selector=value,...}=value;".
class Records final : public FeatureRecords
{
public:
    void Clear() override
    {
        ++clears;
        text.clear();
    }
    CSelectorState* AllocateSelector() override
    {
        if (refusesSelectors) return nullptr;
        return &states.emplace_back();
    }
    void DeleteSelector(CSelectorState*& state) override
    {
        ++deletions;
        EXPECT_EQ(state, &states.back());
        states.pop_back();
        state = nullptr;
    }
    void Push(const char* name, const char* value, CSelectorState* state) override
    {
        text += name;
        for (bool more = state->SetFirst(); more; more = state->SetNext())
        {
            selectorNames += std::string(state->GetNodeName().c_str()) + ";";
            text += std::string("{") + state->GetNodeName().c_str() + "=" + state->GetNodeValue().c_str() + "}";
        }
        text += std::string("=") + value + ";";
    }

    std::string text;
    std::string selectorNames;
    int clears = 0;
    int deletions = 0;
    bool refusesSelectors = false;

private:
    std::list<CSelectorState> states;
};

// What a file is read as; in place of an exception its words.
std::string Read(const std::string& file)
{
    std::istringstream stream(file);
    Records records;
    try
    {
        ReadFeatureFile(stream, records);
    }
    catch (const GENICAM_NAMESPACE::RuntimeException& exception)
    {
        return std::string("!") + exception.GetDescription();
    }
    return records.text;
}

// Behind the first line.
std::string ReadRecords(const std::string& lines)
{
    return Read(head + lines);
}

const std::string noMagic =
    "!The stream is not a GenApi feature stream since it is missing the magic GUID in the first line";
const std::string excess = "!The stream holds excess data";
const std::string incomplete = "!The stream holds incomplete key - value - set";

} // namespace

TEST(FeatureFileReader, NamesSelectorsAndValuesAreRead)
{
    EXPECT_EQ(
        ReadRecords("Width\t640\nGain\t{Channel=Red\tBank=2}\t1.5\nHeight\t480\n"),
        "Width=640;Gain{Channel=Red}{Bank=2}=1.5;Height=480;");
}

TEST(FeatureFileReader, CommonFormIsReadAsByEveryReader)
{
    class Lines final : public FeatureRecords
    {
    public:
        void Clear() override {}
        CSelectorState* AllocateSelector() override { return &states.emplace_back(); }
        void DeleteSelector(CSelectorState*&) override {}
        void Push(const char* name, const char* value, CSelectorState* state) override
        {
            WriteFeatureRecord(text, name, value, *state);
        }

        std::ostringstream text;
        std::list<CSelectorState> states;
    };
    for (const FeatureFileForm& form : featureFileForms)
    {
        std::istringstream stream(head + form.lines);
        Lines lines;
        ReadFeatureFile(stream, lines);
        EXPECT_EQ(lines.text.str(), form.records) << form.lines;
    }
}

TEST(FeatureFileReader, StreamAtItsEndIsRefusedAndNothingIsCleared)
{
    std::istringstream stream("");
    stream.setstate(std::ios::eofbit);
    Records records;
    records.text = "before";
    try
    {
        ReadFeatureFile(stream, records);
        FAIL();
    }
    catch (const GENICAM_NAMESPACE::RuntimeException& exception)
    {
        EXPECT_STREQ(exception.GetDescription(), "The stream is eof");
        EXPECT_NE(std::string(exception.what()).find("feature_file_reader.cpp"), std::string::npos);
    }
    EXPECT_EQ(records.text, "before");
}

TEST(FeatureFileReader, RecordsAreClearedOnceAndBeforeAnyFailure)
{
    std::istringstream stream("no feature file");
    Records records;
    records.text = "before";
    EXPECT_THROW(ReadFeatureFile(stream, records), GENICAM_NAMESPACE::RuntimeException);
    EXPECT_EQ(records.text, "");
    EXPECT_EQ(records.clears, 1);
}

TEST(FeatureFileReader, StreamStandsAtItsBeginAfterwardsAndCanBeReadAgain)
{
    std::istringstream stream(head + "A\t1\n");
    Records records;
    ReadFeatureFile(stream, records);
    EXPECT_EQ(stream.tellg(), 0);
    ReadFeatureFile(stream, records);
    EXPECT_EQ(records.text, "A=1;");
}

TEST(FeatureFileReader, RestOfTheStreamIsReadFromWhereItStands)
{
    std::istringstream stream("skipped" + head + "A\t1\n");
    stream.seekg(7);
    Records records;
    ReadFeatureFile(stream, records);
    EXPECT_EQ(records.text, "A=1;");
}

TEST(FeatureFileReader, EmptyFileMissesTheMagic)
{
    EXPECT_EQ(Read(""), noMagic);
}

TEST(FeatureFileReader, MagicIsLookedForInTheFirstLineAlone)
{
    EXPECT_EQ(Read("\n" + head), noMagic);
    EXPECT_EQ(Read("# no magic\n" + head + "A\t1\n"), noMagic);
    EXPECT_EQ(Read("# {05D8C294-F295-4DFB-9D01-096BD04049F4}\n"), noMagic) << "letter case counts";
}

TEST(FeatureFileReader, MagicInTheMiddleOfOtherTextIsAccepted)
{
    EXPECT_EQ(Read("written by hand " + magic + " yesterday\nA\t1\n"), "A=1;");
}

TEST(FeatureFileReader, FileOfSeveralBagsIsRefusedByItsOwnName)
{
    const std::string other = "{4709CB3C-7322-4460-84C3-DA11DDA09939}";
    EXPECT_EQ(
        Read("# " + other + "\n[Default]\n"),
        "!The stream has been created using the CFeatureBagger class thus must be restored using the CFeatureBagger "
        "class as well");
    EXPECT_EQ(Read("# " + other + magic + "\nA\t1\n"), "A=1;") << "the own magic decides";
}

TEST(FeatureFileReader, FirstLineAloneHoldsNoRecords)
{
    EXPECT_EQ(Read(head), "");
    EXPECT_EQ(Read(magic), "") << "without line feed";
}

TEST(FeatureFileReader, CarriageReturnsGoWhereverTheyStand)
{
    EXPECT_EQ(
        Read("# " + magic + "\r\n# comment\r\nWidth\t640\r\nGain\t{Ch\rannel=Red}\t1\r.5\r\n"),
        "Width=640;Gain{Channel=Red}=1.5;");
}

TEST(FeatureFileReader, NothingBehindAZeroByteIsSeen)
{
    using namespace std::string_literals;
    EXPECT_EQ(ReadRecords("A\t1\nB\t2\0ignored\nC\t3\n"s), "A=1;B=2;");
    EXPECT_EQ(ReadRecords("A\t1\nB\0\t2\n"s), excess);
    EXPECT_EQ(Read("\0"s + head), noMagic);
    EXPECT_EQ(ReadRecords("A\t1\n\0"s), "A=1;");
}

TEST(FeatureFileReader, CommentsAreSkippedAtTheStartAndBetweenRecordsSeveralInARow)
{
    EXPECT_EQ(ReadRecords("#1\n#2\nA\t1\n#3\n#\n#5\nB\t2\n#6"), "A=1;B=2;");
}

TEST(FeatureFileReader, CommentIsOneOnlyByItsFirstByte)
{
    EXPECT_EQ(ReadRecords(" #A\t1\n"), "#A=1;");
}

TEST(FeatureFileReader, CommentLineOf1024BytesIsSkippedAndTheRestOfALongerOneIsARecord)
{
    EXPECT_EQ(ReadRecords(std::string(1023, '#') + "\nA\t1\n"), "A=1;");
    EXPECT_EQ(ReadRecords(std::string(1024, '#') + "\nA\t1\n"), "A=1;") << "a line feed is left, which is trimmed";
    EXPECT_EQ(ReadRecords("#" + std::string(1023, '-') + "B\t2\nA\t1\n"), "B=2;A=1;");
    EXPECT_EQ(ReadRecords("#" + std::string(1023, '-') + "#still one\nA\t1\n"), "A=1;");
    EXPECT_EQ(ReadRecords("#" + std::string(1023, '-') + "rest\n"), excess);
}

TEST(FeatureFileReader, RecordWithoutTabIsExcessData)
{
    EXPECT_EQ(ReadRecords("Width"), excess);
    EXPECT_EQ(ReadRecords("A\t1\nWidth 640\n"), excess);
    EXPECT_EQ(ReadRecords("A\t1\n\n"), excess) << "blank lines at the end";
}

TEST(FeatureFileReader, NameIsTrimmedAndValueIsNot)
{
    EXPECT_EQ(ReadRecords(" \v\f A b \t 1 \t2 \n"), "A b= 1 \t2 ;");
}

TEST(FeatureFileReader, BlankLineInFrontOfANameIsTrimmedAway)
{
    EXPECT_EQ(ReadRecords("A\t1\n\n \nB\t2\n"), "A=1;B=2;");
}

TEST(FeatureFileReader, EmptyNameSkipsToTheNextRecordSoTheRestOfItsLineIsAName)
{
    EXPECT_EQ(ReadRecords("   \tA\nB\t1\n"), "A\nB=1;");
    EXPECT_EQ(ReadRecords("\t\t\tA\t1\n"), "A=1;");
    EXPECT_EQ(ReadRecords("A\t1\n \t"), "A=1;") << "and ends with the text";
    EXPECT_EQ(ReadRecords("\t#C\t1\n"), "#C=1;") << "without a look for comments";
}

TEST(FeatureFileReader, EmptyValueIsIncompleteAndItsSelectorStateIsGivenBack)
{
    EXPECT_EQ(ReadRecords("Width\t\n"), incomplete);
    EXPECT_EQ(ReadRecords("Width\t"), incomplete);
    EXPECT_EQ(ReadRecords("Gain\t{Channel=Red}\t\nA\t1\n"), incomplete);

    std::istringstream stream(head + "A\t1\nWidth\t\n");
    Records records;
    EXPECT_THROW(ReadFeatureFile(stream, records), GENICAM_NAMESPACE::RuntimeException);
    EXPECT_EQ(records.deletions, 1);
    EXPECT_EQ(records.text, "A=1;");
}

TEST(FeatureFileReader, LastLineWithoutLineFeedIsRead)
{
    EXPECT_EQ(ReadRecords("A\t1\nB\t2"), "A=1;B=2;");
}

TEST(FeatureFileReader, SelectorStateThatIsRefusedEndsTheReading)
{
    std::istringstream stream(head + "A\t1\n");
    Records records;
    records.refusesSelectors = true;
    try
    {
        ReadFeatureFile(stream, records);
        FAIL();
    }
    catch (const GENICAM_NAMESPACE::RuntimeException& exception)
    {
        EXPECT_STREQ(exception.GetDescription(), "Unable to allocate SelectorState");
    }
}

TEST(FeatureFileReader, TextThatEndsInTheFirstSelectorFieldEndsQuietlyWithoutTheRecord)
{
    EXPECT_EQ(ReadRecords("A\t1\nGain\t{Channel=Red}"), "A=1;");
    EXPECT_EQ(ReadRecords("Gain\t{Channel=Red}1.5\nA\t1"), "Gain{Channel=Red}=1;")
        << "the field goes to the next tab, over line feeds";
}

TEST(FeatureFileReader, TextThatEndsInALaterSelectorFieldLacksItsValue)
{
    EXPECT_EQ(ReadRecords("Gain\t{A=1\tB=2}"), incomplete);
}

TEST(FeatureFileReader, SelectorFieldWithoutSignAddsNone)
{
    EXPECT_EQ(ReadRecords("Gain\t{Channel}\t1.5\n"), "Gain=1.5;");
    EXPECT_EQ(ReadRecords("Gain\t{A=1\tChannel}\t1.5\n"), "Gain{A=1}=1.5;");
    EXPECT_EQ(ReadRecords("Gain\t{A=1\tChannel\tB=2}\t1.5\n"), "Gain{A=1}=B=2}\t1.5;") << "and ends the selectors";
}

TEST(FeatureFileReader, NameOfASelectorGoesToTheLastSign)
{
    std::istringstream stream(head + "Gain\t{A=B=1\tC==2}\t3\n");
    Records records;
    ReadFeatureFile(stream, records);
    EXPECT_EQ(records.selectorNames, "A=B;C=;");
    EXPECT_EQ(records.text, "Gain{A=B=1}{C==2}=3;");
}

TEST(FeatureFileReader, LastBraceOfASelectorFieldEndsItsValue)
{
    EXPECT_EQ(ReadRecords("Gain\t{A=1}}\t2\n"), "Gain{A=1}}=2;");
    EXPECT_EQ(ReadRecords("Gain\t{A=1}x\t2\n"), "Gain{A=1}=2;");
    EXPECT_EQ(ReadRecords("Gain\t{A}=1\t2\n"), "Gain{A}=1}=2;") << "a brace in front of the sign ends the selectors";
    EXPECT_EQ(ReadRecords("Gain\t{=}\t2\n"), "Gain{=}=2;");
    EXPECT_EQ(ReadRecords("Gain\t{A=1\t{B=2}\t3\n"), "Gain{A=1}{B=2}=3;");
}

TEST(FeatureFileReader, ValueMayHoldBracesAndTabsBehindItsFirstByte)
{
    EXPECT_EQ(ReadRecords("A\tx{B=1}\t2\n"), "A=x{B=1}\t2;");
}

TEST(FeatureFileReader, LineOf64MegabytesIsReadWhole)
{
    const std::string value(64 << 20, 'v');
    std::istringstream stream(head + "A\t" + value + "\nB\t2\n");
    Records records;
    ReadFeatureFile(stream, records);
    EXPECT_TRUE(records.text == "A=" + value + ";B=2;");
}

TEST(FeatureFileReader, FileBeyondTheBoundIsRefused)
{
    std::istringstream stream(head + "A\t" + std::string((256 << 20) - head.size() - 1, 'v'));
    Records records;
    EXPECT_THROW(ReadFeatureFile(stream, records), GENICAM_NAMESPACE::RuntimeException);
}

TEST(FeatureFileReader, SelectorsBeyondTheBoundAreRefused)
{
    std::string file = head + "A\t{";
    for (int pair = 0; pair <= 4 << 20; ++pair)
        file += "=\t";
    EXPECT_EQ(Read(file), "!The stream holds more than 4194304 selectors");
}

TEST(FeatureFileWriter, HeadWithoutInfoIsTheMagicAlone)
{
    std::ostringstream stream;
    WriteFeatureFileHead(stream, "");
    EXPECT_EQ(stream.str(), "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n");
}

TEST(FeatureFileWriter, HeadTellsTheFormatsVersionAndTheInfo)
{
    std::ostringstream stream;
    WriteFeatureFileHead(stream, "Device = ZVR::Camera");
    EXPECT_EQ(
        stream.str(), "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n"
                      "# GenApi persistence file (version 3.4.1)\n"
                      "# Device = ZVR::Camera\n");
}

TEST(FeatureFileWriter, InfoOfSeveralOrLongLinesStaysAComment)
{
    const std::string line(1021, 'x');
    for (const std::string& info :
         {std::string("one\ntwo"), std::string("one\r\n\r\n"), std::string("\none"), std::string("on\0e", 4), line,
          line + "y", line + line + "z", line + "\n" + line})
    {
        std::ostringstream stream;
        WriteFeatureFileHead(stream, {info.data(), info.size()});
        EXPECT_TRUE(Read(stream.str() + "A\t1\n") == "A=1;") << info.size();
    }
    std::ostringstream stream;
    WriteFeatureFileHead(stream, ("one\n" + line + "two").c_str());
    EXPECT_TRUE(stream.str() == head + "# GenApi persistence file (version 3.4.1)\n# one\n# " + line + "\n# two\n");
}

TEST(FeatureFileWriter, RecordsHaveOneTabBetweenTheirParts)
{
    std::ostringstream stream;
    CSelectorState none;
    CSelectorState two;
    two.AddSelector("A", "1");
    two.AddSelector("B", "2");
    two.SetNext(); // wherever it stands
    WriteFeatureRecord(stream, "Width", "640", none);
    WriteFeatureRecord(stream, "Gain", "1.5", two);
    EXPECT_EQ(stream.str(), "Width\t640\nGain\t{A=1\tB=2}\t1.5\n");
    EXPECT_EQ(ReadRecords(stream.str()), "Width=640;Gain{A=1}{B=2}=1.5;");
}

TEST(FeatureFileWriter, NothingIsQuotedOrEscaped)
{
    std::ostringstream stream;
    CSelectorState state;
    state.AddSelector("A}", "1\t2");
    WriteFeatureRecord(stream, "#Na\tme", " a\nb\\\"} ", state);
    EXPECT_EQ(stream.str(), "#Na\tme\t{A}=1\t2}\t a\nb\\\"} \n");
}

TEST(RefusedLoad, IsToldByTheFirstOfItsErrorsAlone)
{
    GENICAM_NAMESPACE::gcstring_vector errors;
    EXPECT_EQ(TextOfRefusedLoad(errors), "An error occurred!");
    errors.push_back("first");
    errors.push_back("second");
    EXPECT_EQ(TextOfRefusedLoad(errors), "first");
}

} // namespace koro::test
