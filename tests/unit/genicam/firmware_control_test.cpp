#include "firmware/bounds.h"
#include "tests/unit/genicam/firmware_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace koro::test;
using testing::HasSubstr;
using testing::StartsWith;

std::string ReadText(const std::string& xml)
{
    const UpdateFileOnDisk file = WithControl(xml);
    return Thrown([&] { ReadAll(file); });
}

std::string ReadRules(const std::string& rules)
{
    return ReadText(Control(rules));
}

// What is said of a procedure with the steps.
std::string ReadSteps(const std::string& steps)
{
    return ReadRules(Procedure(steps) + Update());
}

// What is said of the text behind "... line L and column C : ".
std::string Fault(const std::string& thrown)
{
    const std::string begin = "RuntimeException: Error while parsing XML stream at line ";
    const size_t end = thrown.find(" : ");
    return thrown.rfind(begin, 0) == 0 && end != std::string::npos ? thrown.substr(thrown.find(" : ", begin.size()) + 3)
                                                                   : thrown;
}

std::string Unexpected(const std::string& name)
{
    return "'unexpected element encountered: '" + name + "''";
}

std::string Expected(const std::string& name)
{
    return "'expected element not encountered: '" + name + "''";
}

const std::string described = "<Description>D</Description>";

TEST(ControlFile, EveryKindOfStepIsTaken)
{
    const std::string common = "<ExpectedDurationMs>5</ExpectedDurationMs>";
    const std::string feature = common + "<FeatureName>Gain</FeatureName>";
    EXPECT_EQ(
        ReadSteps(
            Step("FeatureWrite", feature + "<Value>1</Value>") + Step("FeatureExecute", feature) +
            Step("FeatureExecute", feature + "<MaximumExecutionTimeoutMs>7</MaximumExecutionTimeoutMs>") +
            Step("FeatureAssert", feature + "<AssertPattern>1</AssertPattern>") +
            Step("FeatureAssert", feature + "<AssertPattern>1</AssertPattern><Message>No</Message>") +
            Step("FileUpload", common + "<DeviceFileName>F</DeviceFileName><FileName>a b/c</FileName>") +
            Step("DeviceReset", common) +
            Step("DeviceReset", common + "<DeviceDiscoveryDelayMs>9</DeviceDiscoveryDelayMs>") +
            Step("FeatureWrite", "<FeatureName>Gain</FeatureName><Value/>")),
        "nothing");
}

TEST(ControlFile, SeveralProceduresAndUpdatesAreTaken)
{
    EXPECT_EQ(ReadRules(Procedure("") + Procedure("", "Q_2") + Update() + Update()), "nothing");
}

TEST(ControlFile, FaultTellsLineAndColumn)
{
    EXPECT_EQ(
        ReadText("<a>\n  <b></a>"), "RuntimeException: Error while parsing XML stream at line 1 and column 1 : "
                                    "'unexpected element encountered: 'a''");
    EXPECT_EQ(
        ReadRules("\n\n   <Oops/>"),
        "RuntimeException: Error while parsing XML stream at line 4 and column 4 : 'unexpected element encountered: "
        "'http://www.genicam.org/GenFwUpdate/Version_1_0|Oops''");
}

TEST(ControlFile, TextThatIsNotWellFormedIsRefused)
{
    EXPECT_EQ(Fault(ReadText("")), "'no element found'");
    EXPECT_EQ(Fault(ReadText("no XML")), "'syntax error'");
    const std::string whole = Control(Procedure("") + Update());
    EXPECT_EQ(Fault(ReadText(whole.substr(0, whole.size() - 1))), "'unclosed token'");
    EXPECT_EQ(Fault(ReadText(whole + "<more/>")), "'junk after document element'");
}

TEST(ControlFile, NoCutTextIsTaken)
{
    const std::string whole = Control(Procedure(Step("DeviceReset")) + Update());
    for (size_t size = 0; size < whole.size(); ++size)
        EXPECT_THAT(ReadText(whole.substr(0, size)), StartsWith("RuntimeException: Error while parsing")) << size;
}

TEST(ControlFile, RootNeedsNameSpaceNameAndNumbers)
{
    const std::string rules = Procedure("") + Update();
    EXPECT_EQ(
        Fault(ReadText("<GufRuleSet SchemaMajorVersion=\"1\" SchemaMinorVersion=\"0\">" + rules + "</GufRuleSet>")),
        Unexpected("GufRuleSet"));
    const auto rooted = [&](const std::string& attributes) {
        return Fault(ReadText(
            "<GufRuleSet xmlns=\"http://www.genicam.org/GenFwUpdate/Version_1_0\" " + attributes + ">" + rules +
            "</GufRuleSet>"));
    };
    EXPECT_EQ(rooted("SchemaMajorVersion=\"1\" SchemaMinorVersion=\"0\""), "nothing");
    EXPECT_EQ(rooted("SchemaMajorVersion=\"99\" SchemaMinorVersion=\"77\""), "nothing");
    EXPECT_EQ(rooted("SchemaMajorVersion=\"1\""), "'expected attribute not encountered: 'SchemaMinorVersion''");
    EXPECT_EQ(rooted("SchemaMinorVersion=\"1\""), "'expected attribute not encountered: 'SchemaMajorVersion''");
    EXPECT_EQ(rooted("SchemaMajorVersion=\"-1\" SchemaMinorVersion=\"0\""), "'invalid number: '-1''");
    EXPECT_EQ(rooted("SchemaMajorVersion=\"one\" SchemaMinorVersion=\"0\""), "'invalid number: 'one''");
}

TEST(ControlFile, OtherElementOfTheNameSpaceIsNoRoot)
{
    EXPECT_THAT(
        Fault(ReadText("<Update xmlns=\"http://www.genicam.org/GenFwUpdate/Version_1_0\" ProcedureId=\"P\"/>")),
        HasSubstr("unexpected element encountered"));
}

TEST(ControlFile, HintsForSchemaCheckersAreTaken)
{
    EXPECT_EQ(
        ReadText(
            "<g:GufRuleSet xmlns:g=\"http://www.genicam.org/GenFwUpdate/Version_1_0\" "
            "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:schemaLocation=\"a b\" "
            "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"0\"><g:Procedure Id=\"P\"/><g:Update "
            "ProcedureId=\"P\"><g:Info><g:Entry Key=\"Version\">1</g:Entry><g:Entry Key=\"Description\">D</g:Entry>"
            "</g:Info><g:Condition Feature=\"A\">.</g:Condition></g:Update></g:GufRuleSet>"),
        "nothing");
}

TEST(ControlFile, RulesNeedProceduresBeforeUpdates)
{
    EXPECT_EQ(Fault(ReadRules("")), Expected("Procedure"));
    EXPECT_EQ(Fault(ReadRules(Update())), Expected("Procedure"));
    EXPECT_EQ(Fault(ReadRules(Procedure(""))), Expected("Update"));
    EXPECT_EQ(Fault(ReadRules(Procedure("") + Update() + Procedure("", "Q"))), Unexpected("Procedure"));
    EXPECT_EQ(Fault(ReadRules(Procedure(Update()))), Unexpected("Update"));
}

TEST(ControlFile, StepNeedsADescriptionFirst)
{
    const std::string write = "<FeatureName>Gain</FeatureName><Value>1</Value>";
    EXPECT_EQ(Fault(ReadSteps("<FeatureWrite>" + write + "</FeatureWrite>")), Expected("Description"));
    EXPECT_EQ(Fault(ReadSteps("<DeviceReset/>")), Expected("Description"));
    EXPECT_EQ(Fault(ReadSteps("<FeatureWrite>" + write + described + "</FeatureWrite>")), Expected("Description"));
    EXPECT_EQ(Fault(ReadSteps("<FeatureWrite>" + described + described + write + "</FeatureWrite>")), "nothing");
}

TEST(ControlFile, ChildrenOfStepsKeepTheirOrderAndNumber)
{
    const std::string feature = "<FeatureName>A</FeatureName>";
    const std::string duration = "<ExpectedDurationMs>1</ExpectedDurationMs>";
    EXPECT_EQ(Fault(ReadSteps(Step("FeatureWrite", feature))), Expected("Value"));
    EXPECT_EQ(Fault(ReadSteps(Step("FeatureWrite", "<Value/>"))), Expected("FeatureName"));
    EXPECT_EQ(Fault(ReadSteps(Step("FeatureWrite", "<Value/>" + feature))), Expected("FeatureName"));
    EXPECT_EQ(Fault(ReadSteps(Step("FeatureWrite", feature + feature + "<Value/>"))), Unexpected("FeatureName"));
    EXPECT_EQ(Fault(ReadSteps(Step("FeatureWrite", feature + "<Value/><Value/>"))), Unexpected("Value"));
    EXPECT_EQ(
        Fault(ReadSteps(Step("FeatureWrite", feature + duration + "<Value/>"))), Unexpected("ExpectedDurationMs"));
    EXPECT_EQ(
        Fault(ReadSteps(Step("FeatureWrite", duration + duration + feature + "<Value/>"))),
        Unexpected("ExpectedDurationMs"));
    EXPECT_EQ(Fault(ReadSteps(Step("FeatureExecute"))), Expected("FeatureName"));
    EXPECT_EQ(Fault(ReadSteps(Step("FeatureExecute", feature + "<Value/>"))), Unexpected("Value"));
    EXPECT_EQ(Fault(ReadSteps(Step("FeatureAssert", feature))), Expected("AssertPattern"));
    EXPECT_EQ(Fault(ReadSteps(Step("FileUpload", "<DeviceFileName>F</DeviceFileName>"))), Expected("FileName"));
    EXPECT_EQ(Fault(ReadSteps(Step("FileUpload", "<FileName>F</FileName>"))), Expected("DeviceFileName"));
    EXPECT_EQ(
        Fault(ReadSteps(Step("Selftest"))), Unexpected("http://www.genicam.org/GenFwUpdate/Version_1_0|Selftest"));
    EXPECT_EQ(Fault(ReadSteps(Step("Entry"))), Unexpected("Entry"));
}

TEST(ControlFile, UpdateNeedsInformationThenConditions)
{
    const std::string condition = "<Condition Feature=\"A\"/>";
    const auto update = [](const std::string& children) {
        return Fault(ReadRules(Procedure("") + "<Update ProcedureId=\"P\">" + children + "</Update>"));
    };
    EXPECT_EQ(update("<Info>" + neededEntries + "</Info>" + condition + condition), "nothing");
    EXPECT_EQ(update(condition), Expected("Info"));
    EXPECT_EQ(update("<Info/>"), Expected("Condition"));
    EXPECT_EQ(update("<Info/><Info/>" + condition), Unexpected("Info"));
    EXPECT_EQ(update("<Info/>" + condition + "<Info/>"), Unexpected("Info"));
}

TEST(ControlFile, AttributesAreTheKnownOnes)
{
    const auto rules = [](const std::string& procedure, const std::string& update) {
        return Fault(ReadRules(procedure + update));
    };
    EXPECT_EQ(rules("<Procedure/>", Update()), "'expected attribute not encountered: 'Id''");
    EXPECT_EQ(rules("<Procedure Id=\"P\" X=\"1\"/>", Update()), "'unexpected attribute encountered: 'X''");
    EXPECT_EQ(rules(Procedure(""), "<Update/>"), "'expected attribute not encountered: 'ProcedureId''");
    EXPECT_EQ(rules(Procedure(""), Update("<Entry>1</Entry>")), "'expected attribute not encountered: 'Key''");
    EXPECT_EQ(
        rules(Procedure(""), Update(neededEntries, "<Condition/>")), "'expected attribute not encountered: 'Feature''");
    EXPECT_EQ(
        Fault(ReadSteps("<DeviceReset Lang=\"en\">" + described + "</DeviceReset>")),
        "'unexpected attribute encountered: 'Lang''");
}

TEST(ControlFile, NamesAreALetterThenLettersDigitsUnderscores)
{
    for (const std::string name : {"", "1a", "_a", "a-b", "a b", "\xc3\xa4"})
    {
        const std::string fault = "'invalid name: '" + name + "''";
        EXPECT_EQ(Fault(ReadRules(Procedure("", name) + Update())), fault);
        EXPECT_EQ(
            Fault(ReadRules(Procedure("") + Update(neededEntries, "<Condition Feature=\"" + name + "\"/>"))), fault);
        EXPECT_EQ(Fault(ReadRules(Procedure("") + Update(neededEntries, "<Condition Feature=\"A\"/>", name))), fault);
        EXPECT_EQ(
            Fault(ReadSteps(Step("FileUpload", "<DeviceFileName>" + name + "</DeviceFileName><FileName>f</FileName>"))),
            fault);
    }
    EXPECT_EQ(Fault(ReadRules(Procedure("", "Zz_9") + Update())), "nothing");
}

TEST(ControlFile, NumbersAreUnsignedDecimalWithin32Bits)
{
    const auto number = [](const std::string& text) {
        return Fault(ReadSteps(Step("DeviceReset", "<ExpectedDurationMs>" + text + "</ExpectedDurationMs>")));
    };
    EXPECT_EQ(number("4294967295"), "nothing");
    EXPECT_EQ(number("\n 007 "), "nothing");
    for (const std::string text : {"4294967296", "99999999999999999999999999", "-1", "+1", "0x10", "1.5", "", "1 2"})
        EXPECT_EQ(number(text), "'invalid number: '" + text + "''");
}

TEST(ControlFile, TextStandsOnlyWhereTextBelongs)
{
    EXPECT_EQ(Fault(ReadRules("text" + Procedure("") + Update())), "'unexpected characters encountered: 'text''");
    EXPECT_EQ(Fault(ReadSteps(Step("DeviceReset", "now"))), "'unexpected characters encountered: 'now''");
    EXPECT_EQ(
        Fault(ReadSteps("<DeviceReset><Description>D<b/></Description></DeviceReset>")),
        Unexpected("http://www.genicam.org/GenFwUpdate/Version_1_0|b"));
    EXPECT_EQ(ReadRules(" \n\t" + Procedure("") + "<!-- remark -->" + Update()), "nothing");
}

TEST(ControlFile, TwoProceduresOfOneIdAreRefused)
{
    EXPECT_EQ(Fault(ReadRules(Procedure("") + Procedure("") + Update())), "'there are two procedures 'P''");
}

TEST(ControlFile, DeepNestingIsRefusedAtItsFirstWrongElement)
{
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "<Procedure Id=\"P" + std::to_string(i) + "\">";
    EXPECT_EQ(Fault(ReadRules(deep)), Unexpected("Procedure"));
}

TEST(ControlFile, TooManyElementsAreRefused)
{
    std::string many;
    for (size_t i = 0; i < GENAPI_NAMESPACE::runtime::maxControlElements; ++i)
        many += "<Procedure Id=\"P" + std::to_string(i) + "\"/>";
    EXPECT_EQ(Fault(ReadRules(many)), "'there are more than 100000 elements'");
}

TEST(ControlFile, TooManyPatternsAreRefused)
{
    const std::string assertion =
        Step("FeatureAssert", "<FeatureName>Gain</FeatureName><AssertPattern>.</AssertPattern>");
    std::string conditions;
    for (size_t i = 1; i < GENAPI_NAMESPACE::runtime::maxControlPatterns; ++i)
        conditions += "<Condition Feature=\"Gain\"/>";
    EXPECT_EQ(ReadAll(WithControl(Control(Procedure(assertion) + Update(neededEntries, conditions)))).size(), 1u);
    EXPECT_EQ(
        Fault(ReadRules(Procedure(assertion) + Update(neededEntries, conditions) + Update())),
        "'there are more than 5000 patterns'");
    EXPECT_EQ(
        Fault(ReadRules(Procedure(assertion + assertion) + Update(neededEntries, conditions))),
        "'there are more than 5000 patterns'");
}

TEST(ControlFile, EntitiesOfItsOwnAreExpanded)
{
    const std::string xml =
        "<!DOCTYPE GufRuleSet [<!ENTITY vendor \"Acme\">]>" +
        Control(Procedure("") + Update(Entry("Version", "1") + Entry("Description", "&vendor;!"))).substr(39);
    const auto infos = ReadAll(WithControl(xml));
    ASSERT_EQ(infos.size(), 1u);
    EXPECT_STREQ(infos[0].GetInfo("Description"), "Acme!");
}

TEST(ControlFile, ExplodingEntitiesAreRefused)
{
    std::string entities = "<!ENTITY e0 \"0123456789\">";
    for (int i = 1; i < 10; ++i)
    {
        entities += "<!ENTITY e" + std::to_string(i) + " \"";
        for (int repeated = 0; repeated < 10; ++repeated)
            entities += "&e" + std::to_string(i - 1) + ";";
        entities += "\">";
    }
    const std::string rules = Control(Procedure("") + Update(Entry("Version", "&e9;"))).substr(39);
    EXPECT_THAT(
        Fault(ReadText("<!DOCTYPE GufRuleSet [" + entities + "]>" + rules)),
        HasSubstr("limit on input amplification factor"));
}

// expat expands an entity inside another one by recursion: without a bound some 25,000 of them end the stack.
TEST(ControlFile, EntitiesInsideEachOtherAreRefusedBeforeTheStackEnds)
{
    std::string entities = "<!ENTITY e0 \"x\">";
    for (int i = 1; i < 25000; ++i)
        entities += "<!ENTITY e" + std::to_string(i) + " \"&e" + std::to_string(i - 1) + ";\">";
    const std::string rules = Control(Procedure("") + Update(Entry("Version", "&e24999;"))).substr(39);
    EXPECT_EQ(Fault(ReadText("<!DOCTYPE GufRuleSet [" + entities + "]>" + rules)), "'too many entities are declared'");
}

// Slow growth, below the factor at which the parser itself gives up.
TEST(ControlFile, EntitiesCannotMakeTheTextsTooLong)
{
    std::string references;
    for (int i = 0; i < 7; ++i)
        references += "&big;";
    const std::string rules = Control(Procedure("") + Update(Entry("Version", references))).substr(39);
    std::string noise;
    for (uint32_t value = 1; noise.size() < (5u << 20); value = value * 69069 + 1)
        noise += static_cast<char>('a' + (value >> 20) % 26);
    EXPECT_EQ(
        Fault(ReadText("<!DOCTYPE GufRuleSet [<!ENTITY big \"" + noise + "\">]>" + rules)),
        "'the texts have more than 33554432 bytes'");
}

TEST(ControlFile, ExternalEntityIsNotFetched)
{
    const std::string rules = Control(Procedure("") + Update(Entry("Version", "&out;"))).substr(39);
    EXPECT_EQ(
        Fault(ReadText("<!DOCTYPE GufRuleSet [<!ENTITY out SYSTEM \"/etc/passwd\">]>" + rules)),
        "'error in processing external entity reference'");
}

TEST(ControlFile, BytesThatAreNoTextAreRefused)
{
    EXPECT_EQ(Fault(ReadRules(Procedure("") + Update(Entry("Version", "\xff")))), "'not well-formed (invalid token)'");
}

} // namespace
