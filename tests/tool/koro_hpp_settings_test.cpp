// Settings of a camera that depend on each other, loaded through the C++ face.
#include "tests/boundary/described_camera.h"
#include "tests/support/temporary_folder.h"
#include "tests/tool/koro_tree.h"
#include <koro/koro.hpp>

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace koro::test
{

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string magic = "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n";

// A number that the device takes while another one is 7, one that it always takes, and one that is never writable.
const std::string dependentNodes =
    IntRegister("Mode", 0) + IntRegister("Width", 4) + IntRegister("Height", 8) +
    "<Command Name=\"Fire\"><pValue>Fired</pValue><CommandValue>5</CommandValue></Command>"
    "<Integer Name=\"Fired\"><Value>0</Value></Integer>"
    "<Integer Name=\"Fixed\"><ImposedAccessMode>RO</ImposedAccessMode><Value>1</Value></Integer>"
    "<Float Name=\"Gain\"><Value>1</Value><DisplayNotation>Fixed</DisplayNotation>"
    "<DisplayPrecision>2</DisplayPrecision></Float><Float Name=\"Ratio\"><Value>1</Value></Float>"
    "<Integer Name=\"Mask\"><Value>1</Value><Representation>HexNumber</Representation></Integer>"
    "<Integer Name=\"SameMask\"><pValue>Mask</pValue><Representation>HexNumber</Representation></Integer>"
    "<Boolean Name=\"Flag\"><pValue>FlagValue</pValue></Boolean><Integer Name=\"FlagValue\"><Value>0</Value></Integer>"
    "<IntConverter Name=\"Even\"><FormulaTo>FROM &amp; ~1</FormulaTo><FormulaFrom>TO</FormulaFrom>"
    "<pValue>EvenValue</pValue></IntConverter><Integer Name=\"EvenValue\"><Value>0</Value></Integer>";

GenTL::GC_ERROR RefuseWidth(scripted::Port& changed, std::uint64_t address)
{
    std::string& bytes = changed.registers[0];
    if (address != 4 || bytes.at(0) == 7) return GenTL::GC_ERR_SUCCESS;
    bytes.replace(4, 4, 4, '\0');
    return GenTL::GC_ERR_ACCESS_DENIED;
}

class KoroSettings : public DescribedCamera
{
protected:
    void SetUp() override
    {
        features = NodeMap(Describe(dependentNodes));
        producer->Edit([](scripted::Tree& edited) { RemotePort(edited).written = RefuseWidth; });
    }

    std::vector<SettingFailure> Load(const std::string& text) const { return LoadSettings(features, File(text)); }
    std::string File(const std::string& text) const
    {
        std::ofstream(folder.File("settings.txt"), std::ios::binary) << text;
        return folder.File("settings.txt");
    }
    int64_t Value(const std::string& node) const { return features.Integer(node).Value(); }

    TemporaryFolder folder;
    NodeMap features;
};

} // namespace

TEST_F(KoroSettings, ValuesThatWaitForOthersAreTriedAgain)
{
    const std::string text = magic + "Width\t640\nHeight\t480\nMode\t7\n";
    EXPECT_EQ(CodeOf([&] { features.LoadFromFile(File(text)); }), KORO_RETURN_CODE_BAD_ACCESS);
    EXPECT_EQ(Value("Width"), 0);
    EXPECT_THAT(Load(text), IsEmpty());
    EXPECT_EQ(Value("Width"), 640);
    EXPECT_EQ(Value("Height"), 480);
    EXPECT_EQ(Value("Mode"), 7);
}

TEST_F(KoroSettings, WhatRemainsIsNamedWithLineAndReason)
{
    const auto left = Load(magic + "# a comment\nWidth\t640\nFixed\t3\n\nHeight\t480\nNothing\t1\nMode\t7\n");
    ASSERT_EQ(left.size(), 2u);
    EXPECT_EQ(left[0].line, 4u);
    EXPECT_EQ(left[0].feature, "Fixed");
    EXPECT_THAT(left[0].reason, HasSubstr("not writable"));
    EXPECT_EQ(left[0].code, KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(left[1].line, 7u);
    EXPECT_EQ(left[1].feature, "Nothing");
    EXPECT_THAT(left[1].reason, HasSubstr("Nothing"));
    EXPECT_EQ(Value("Width"), 640);
    EXPECT_EQ(Value("Height"), 480);
}

TEST_F(KoroSettings, CommandsAreNotExecutedAndReported)
{
    const auto left = Load(magic + "Fire\t1\nMode\t7\nWidth\t{Mode=7\tFire=1}\t640\nHeight\t480\n");
    ASSERT_EQ(left.size(), 2u);
    EXPECT_EQ(left[0].line, 2u);
    EXPECT_EQ(left[0].feature, "Fire");
    EXPECT_EQ(left[0].reason, "Fire is a command, and loading settings executes no command!");
    EXPECT_EQ(left[1].line, 4u);
    EXPECT_EQ(left[1].feature, "Width");
    EXPECT_EQ(Value("Fired"), 0);
    EXPECT_EQ(Value("Width"), 0);
    EXPECT_EQ(Value("Height"), 480);

    const auto more = Load(magic + "Width\t640\nFixed\t3\nFire\t1\nMode\t7\n");
    ASSERT_EQ(more.size(), 2u);
    EXPECT_EQ(more[0].feature, "Fixed");
    EXPECT_EQ(more[1].feature, "Fire");
    EXPECT_EQ(Value("Width"), 640);
    EXPECT_EQ(Value("Fired"), 0);
}

TEST_F(KoroSettings, SelectorsThatGoOnInTheNextLineAreRefusedBeforeAnythingIsWritten)
{
    for (const std::string broken : {"Width\t{Mode=7\nHeight\tFire=1}\t480\n", "Width\t{Mode=7}\nHeight\t480\n"})
    {
        EXPECT_EQ(CodeOf([&] { Load(magic + broken); }), KORO_RETURN_CODE_ERROR) << broken;
        EXPECT_EQ(Value("Fired"), 0);
        EXPECT_EQ(Value("Mode"), 0);
        EXPECT_EQ(Value("Height"), 0);
    }
}

TEST_F(KoroSettings, FileThatIsNoneIsAnErrorAndNothingIsWritten)
{
    EXPECT_EQ(CodeOf([&] { LoadSettings(features, folder.File("none.txt")); }), KORO_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(CodeOf([&] { Load("Height\t480\n"); }), KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(CodeOf([&] { Load(magic + "Height\t480\nMode\n"); }), KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(CodeOf([&] { Load(magic + "Height\t480\nMode\t\n"); }), KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(Value("Height"), 0);
    features = NodeMap();
    EXPECT_EQ(CodeOf([&] { Load(magic + "Height\t480\n"); }), KORO_RETURN_CODE_INVALID_HANDLE);
}

TEST_F(KoroSettings, FileThatCannotBeReadIsAnError)
{
    EXPECT_EQ(CodeOf([&] { LoadSettings(features, folder.Path().string()); }), KORO_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(CodeOf([&] { LoadSettings(features, "/proc/self/mem"); }), KORO_RETURN_CODE_ERROR);
}

TEST_F(KoroSettings, ValuesThatTheCameraWritesInAnotherFormAreTaken)
{
    const std::string text = magic + "Gain\t3\nWidth\t640\nRatio\t0.123456789\nMask\t10\nFlag\ttrue\nHeight\t0x10\n";
    EXPECT_EQ(CodeOf([&] { features.LoadFromFile(File(text)); }), KORO_RETURN_CODE_BAD_ACCESS);
    EXPECT_THAT(Load(text + "Mode\t7\n"), IsEmpty());
    EXPECT_EQ(features.Float("Gain").Value(), 3);
    EXPECT_THAT(Load(magic + "Gain\t4\n"), IsEmpty());
    EXPECT_EQ(features.Float("Gain").Value(), 4);
    EXPECT_EQ(features.Float("Ratio").Value(), 0.123456789);
    EXPECT_EQ(Value("Mask"), 10);
    EXPECT_TRUE(features.Boolean("Flag").Value());
    EXPECT_EQ(Value("Height"), 16);
    EXPECT_EQ(Value("Width"), 640);
}

TEST_F(KoroSettings, ValuesThatTheCameraHasChangedAreNamed)
{
    const auto left = Load(magic + "Gain\t3\nEven\t5\n");
    ASSERT_EQ(left.size(), 1u);
    EXPECT_EQ(left[0].feature, "Even");
    EXPECT_THAT(left[0].reason, HasSubstr("expected '5', found '4'"));
}

TEST_F(KoroSettings, ValuesThatALaterLineChangesAreReported)
{
    const auto left = Load(magic + "Mask\t10\nSameMask\t0x6\n");
    ASSERT_EQ(left.size(), 1u);
    EXPECT_THAT(left[0].reason, HasSubstr("Line 2: the value of Mask was changed by another line"));
}

TEST_F(KoroSettings, CameraThatDoesNotAnswerIsNotAskedForAllOfThem)
{
    std::string text = magic;
    for (int line = 0; line < 100; ++line)
        text += "Height\t" + std::to_string(line + 1) + "\n";
    producer->ClearJournal();
    producer->Answer("GCWritePort", GenTL::GC_ERR_IO);
    const auto left = Load(text);
    EXPECT_EQ(left.size(), 100u);
    EXPECT_EQ(left.back().line, 101u);
    EXPECT_LT(CallsOf(producer->Journal(), {"GCWritePort"}).size(), 20u);
}

} // namespace koro::test
