// Values as texts and back, for every kind of node.
#include "tests/support/environment_variable.h"
#include "tests/support/temporary_folder.h"
#include "tests/unit/genicam/small_map.h"

#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::EnvironmentVariable;
using koro::test::IntReg;
using koro::test::SmallMap;
using koro::test::TemporaryFolder;

std::string Integer(const std::string& representation, const std::string& value = "0")
{
    return "<Integer Name=\"X\"><Value>" + value + "</Value><Representation>" + representation +
           "</Representation></Integer>";
}

std::string Float(const std::string& value, const std::string& after = "")
{
    return "<Float Name=\"X\"><Value>" + value + "</Value>" + after + "</Float>";
}

std::string Shown(const std::string& elements)
{
    return SmallMap(elements).Value("X")->ToString().c_str();
}

// The number after the text was written.
int64_t Taken(const std::string& representation, const char* text)
{
    const SmallMap map(Integer(representation));
    map.Value("X")->FromString(text);
    return map.Integer("X")->GetValue();
}

double TakenFloat(const char* text)
{
    const SmallMap map(Float("0"));
    map.Value("X")->FromString(text);
    return map.Float("X")->GetValue();
}

TEST(IntegerTexts, AreDecimalOrHexWithoutLeadingZeros)
{
    for (const char* const representation : {"PureNumber", "Linear", "Logarithmic"})
        EXPECT_EQ(Shown(Integer(representation, "-12")), "-12") << representation;
    EXPECT_EQ(Shown(Integer("HexNumber", "0x00AB")), "0xab");
    EXPECT_EQ(Shown(Integer("HexNumber", "-1")), "0xffffffffffffffff");
    EXPECT_EQ(Shown(Integer("HexNumber", "0")), "0");
}

TEST(IntegerTexts, ReadingStopsAtTheFirstOtherLetter)
{
    for (const char* const representation : {"PureNumber", "HexNumber"})
    {
        EXPECT_EQ(Taken(representation, "42"), 42);
        EXPECT_EQ(Taken(representation, "-42"), -42);
        EXPECT_EQ(Taken(representation, "0x2A"), 42);
        EXPECT_EQ(Taken(representation, "7abc"), 7);
        EXPECT_EQ(Taken(representation, "7.9"), 7);
        for (const char* const none : {"", "abc", " ", "-", "+-5", "-+5"})
            EXPECT_THROW(Taken(representation, none), InvalidArgumentException) << none;
    }
}

TEST(IntegerTexts, AddressesAreReadInTheirOwnFormOnly)
{
    EXPECT_EQ(Shown(Integer("IPV4Address", "0xC0A80001")), "192.168.0.1");
    EXPECT_EQ(Taken("IPV4Address", "192.168.0.1"), 0xC0A80001);
    for (const char* const none : {"1", "1.2.3", "1.2.3.4.5", "1.2.3.256", "1.2.3.4 ", "a.b.c.d", "0xC0A80001"})
        EXPECT_THROW(Taken("IPV4Address", none), InvalidArgumentException) << none;

    EXPECT_EQ(Shown(Integer("MACAddress", "0x000123456789")), "00:01:23:45:67:89");
    EXPECT_EQ(Taken("MACAddress", "00:01:23:45:67:89"), 0x000123456789);
    for (const char* const none : {"1", "00:01:23:45:67", "00:01:23:45:67:89:ab", "00-01-23-45-67-89"})
        EXPECT_THROW(Taken("MACAddress", none), InvalidArgumentException) << none;
}

TEST(IntegerTexts, TruthValuesAreReadInTheirOwnFormOnly)
{
    EXPECT_EQ(Shown(Integer("Boolean", "0")), "false");
    EXPECT_EQ(Shown(Integer("Boolean", "7")), "true");
    EXPECT_EQ(Taken("Boolean", "true"), 1);
    for (const char* const none : {"1", "0", "True", "yes", ""})
        EXPECT_THROW(Taken("Boolean", none), InvalidArgumentException) << none;
}

TEST(FloatTexts, HaveSixSignificantDigits)
{
    EXPECT_EQ(Shown(Float("0.1")), "0.1");
    EXPECT_EQ(Shown(Float("1234567.5")), "1.23457e+06");
    EXPECT_EQ(Shown(Float("1e-10")), "1e-10");
    EXPECT_EQ(Shown(Float("100000")), "100000");
    EXPECT_EQ(Shown(Float("-0.0")), "-0");
}

TEST(FloatTexts, FollowNotationAndPrecision)
{
    const std::string three = "<DisplayPrecision>3</DisplayPrecision>";
    EXPECT_EQ(Shown(Float("1234.5678", "<DisplayNotation>Fixed</DisplayNotation>" + three)), "1234.568");
    EXPECT_EQ(Shown(Float("1234.5678", "<DisplayNotation>Scientific</DisplayNotation>" + three)), "1.235e+03");
    EXPECT_EQ(Shown(Float("1234.5678", "<DisplayNotation>Automatic</DisplayNotation>" + three)), "1.23e+03");
}

TEST(FloatTexts, StayWithinTheLimits)
{
    EXPECT_EQ(
        Shown(Float(
            "0.66", "<Max>0.66</Max><DisplayNotation>Fixed</DisplayNotation><DisplayPrecision>1</DisplayPrecision>")),
        "0.6");
    EXPECT_EQ(
        Shown(Float(
            "0.44", "<Min>0.44</Min><DisplayNotation>Fixed</DisplayNotation><DisplayPrecision>1</DisplayPrecision>")),
        "0.5");
}

// A locale whose decimal sign is a comma, made for the test; the former one comes back with the end.
class CommaLocale
{
public:
    CommaLocale()
    {
        const std::string make = "localedef -i de_DE -f UTF-8 '" + folder.File("comma") + "' >/dev/null 2>&1";
        const EnvironmentVariable path("LOCPATH", folder.Path().string());
        made = std::system(make.c_str()) == 0 && std::setlocale(LC_NUMERIC, "comma");
    }
    ~CommaLocale() { std::setlocale(LC_NUMERIC, "C"); }

    bool made = false;

private:
    TemporaryFolder folder;
};

TEST(FloatTexts, HaveAPointWhateverTheLocale)
{
    const CommaLocale locale;
    if (!locale.made) GTEST_SKIP() << "localedef cannot make a locale here";
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_EQ(Shown(Float("0.5")), "0.5");
    EXPECT_EQ(Shown(Float("0.5", "<DisplayNotation>Fixed</DisplayNotation>")), "0.500000");
    EXPECT_EQ(Shown(Float("0.5", "<DisplayNotation>Scientific</DisplayNotation>")), "5.000000e-01");
    EXPECT_EQ(TakenFloat("2.5"), 2.5);
    EXPECT_EQ(SmallMap("<SwissKnife Name=\"K\"><Formula>2.5*2</Formula></SwissKnife>").Float("K")->GetValue(), 5);
    const SmallMap map(Float("0.5", "<Max>1.5</Max>"));
    gcstring text;
    gcstring attribute;
    EXPECT_TRUE(map.Node("X")->GetProperty("Max", text, attribute));
    EXPECT_STREQ(text.c_str(), "1.5");
    try
    {
        map.Float("X")->SetValue(2.5);
        FAIL() << "nothing thrown";
    }
    catch (const OutOfRangeException& exception)
    {
        EXPECT_STREQ(exception.GetDescription(), "Value = 2.500000 must be smaller than or equal to Max = 1.500000.");
    }
}

TEST(FloatTexts, OfTheLargestNumbersAreWhole)
{
    const std::string fixed = "<DisplayNotation>Fixed</DisplayNotation><DisplayPrecision>1000</DisplayPrecision>";
    EXPECT_EQ(Shown(Float("1e308", fixed)).size(), 309u + 1 + 100);
    EXPECT_EQ(Shown(Float("INF")), "inf");
    EXPECT_EQ(Shown(Float("NaN")), "nan");
}

TEST(FloatTexts, AreReadWithPointAndExponent)
{
    EXPECT_EQ(TakenFloat("1.5"), 1.5);
    EXPECT_EQ(TakenFloat("-2.5e3"), -2500);
    EXPECT_EQ(TakenFloat(".5"), 0.5);
    EXPECT_EQ(TakenFloat("1,5"), 1);
    EXPECT_EQ(TakenFloat("0x10"), 10) << "no hex";
    for (const char* const none : {"", "inf", "-inf", "nan", "x", "+-5", "-+5"})
        EXPECT_THROW(TakenFloat(none), InvalidArgumentException) << none;
}

TEST(OtherTexts, BooleansAreOneAndZeroAndTakeWords)
{
    const SmallMap map("<Boolean Name=\"X\"><Value>true</Value></Boolean>");
    EXPECT_STREQ(map.Value("X")->ToString().c_str(), "1");
    for (const auto& [text, shown] : {std::pair("0", "0"), {"true", "1"}, {"false", "0"}, {"1", "1"}})
    {
        map.Value("X")->FromString(text);
        EXPECT_STREQ(map.Value("X")->ToString().c_str(), shown) << text;
    }
    for (const char* const none : {"", "2", "True", "on"})
        EXPECT_THROW(map.Value("X")->FromString(none), InvalidArgumentException) << none;
}

TEST(OtherTexts, EnumerationsAreTheirSymbolics)
{
    const SmallMap map("<Enumeration Name=\"X\"><EnumEntry Name=\"A\"><DisplayName>An "
                       "A</DisplayName><Value>5</Value><Symbolic>Alpha</Symbolic>"
                       "</EnumEntry><EnumEntry Name=\"B\"><Value>6</Value></EnumEntry><Value>5</Value></Enumeration>");
    EXPECT_STREQ(map.Value("X")->ToString().c_str(), "Alpha");
    map.Value("X")->FromString("B");
    EXPECT_EQ(map.Enumeration("X")->GetIntValue(), 6);
    for (const char* const none : {"", "A", "An A", "5", "EnumEntry_X_B", "alpha"})
        EXPECT_THROW(map.Value("X")->FromString(none), InvalidArgumentException) << none;
    EXPECT_STREQ(map.Value("EnumEntry_X_A")->ToString().c_str(), "5");
    EXPECT_THROW(map.Value("EnumEntry_X_A")->FromString("5"), AccessException);
}

TEST(OtherTexts, RegistersAreHexDigits)
{
    const SmallMap map(
        "<Register "
        "Name=\"X\"><Address>0</Address><Length>3</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>");
    map.Value("X")->FromString("0x0aFF10");
    EXPECT_STREQ(map.Value("X")->ToString().c_str(), "0x0aff10");
    map.Value("X")->FromString("bb");
    EXPECT_STREQ(map.Value("X")->ToString().c_str(), "0xbbff10") << "a shorter text writes the first bytes";
    map.Value("X")->FromString("0x0102030405");
    EXPECT_STREQ(map.Value("X")->ToString().c_str(), "0x010203") << "what does not fit is ignored";
    for (const char* const none : {"0x1", "zz", "0xgg"})
        EXPECT_THROW(map.Value("X")->FromString(none), InvalidArgumentException) << none;
}

TEST(OtherTexts, CommandsExecuteAtOneAndTrue)
{
    SmallMap map("<Command Name=\"X\"><pValue>R</pValue><CommandValue>3</CommandValue></Command>" + IntReg("R", "0"));
    EXPECT_STREQ(map.Value("X")->ToString().c_str(), "0");
    for (const char* const text : {"1", "true"})
    {
        map.port.bytes[0] = 0;
        map.Value("X")->FromString(text);
        EXPECT_EQ(map.port.bytes[0], 3) << text;
        EXPECT_STREQ(map.Value("X")->ToString().c_str(), "1") << "busy";
    }
    for (const char* const none : {"", "0", "false", "3"})
        EXPECT_THROW(map.Value("X")->FromString(none), InvalidArgumentException) << none;
    const SmallMap writeOnly(
        "<Command "
        "Name=\"X\"><ImposedAccessMode>WO</ImposedAccessMode><Value>0</Value><CommandValue>3</CommandValue></Command>");
    EXPECT_THROW(writeOnly.Value("X")->ToString(), AccessException);
}

TEST(OtherTexts, CategoriesAreTheirDisplayNameAndPlainNodesEmpty)
{
    const SmallMap map(
        "<Category Name=\"X\"><DisplayName>Of X</DisplayName><pFeature>N</pFeature></Category><Node Name=\"N\"/>");
    EXPECT_STREQ(map.Value("X")->ToString().c_str(), "Of X");
    EXPECT_THROW(map.Value("X")->FromString("a"), AccessException);
    EXPECT_STREQ(map.Value("N")->ToString().c_str(), "");
}

TEST(OtherTexts, StringsKeepTheirBlanks)
{
    const SmallMap map("<String Name=\"X\"><Value>  a b\n</Value></String>");
    EXPECT_STREQ(map.Value("X")->ToString().c_str(), "  a b\n");
    map.Value("X")->FromString("");
    EXPECT_STREQ(map.Value("X")->ToString().c_str(), "");
}

} // namespace
