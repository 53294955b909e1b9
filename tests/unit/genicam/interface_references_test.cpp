#include "tests/unit/genicam/interface_proof.h"
#include "tests/unit/genicam/small_map.h"

#include <GenApi/IEnumerationT.h>
#include <GenApi/INodeMapDyn.h>
#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENAPI_NAMESPACE;
using namespace GENICAM_NAMESPACE;
using koro::test::SmallMap;

static_assert(is_same<CBaseRef, CBaseRefT<IBase, IBase>> && std::is_base_of_v<IReference, CBaseRef>);
static_assert(std::is_base_of_v<CReferenceT<IInteger, IInteger>, CIntegerRef>);
static_assert(std::is_base_of_v<INodeMap, INodeMapDyn>);

enum ModeEnums
{
    Mode_Slow,
    Mode_Fast,
    Mode_Gone
};

// What a generator makes of a description.
class Camera
{
public:
    explicit Camera(const SmallMap& map)
    {
        Mode.SetNumEnums(2);
        Mode.SetEnumReference(Mode_Slow, "Slow");
        Mode.SetEnumReference(Mode_Fast, "Fast");
        Width.SetReference(map.Node("Width"));
        Gain.SetReference(map.Node("Gain"));
        On.SetReference(map.Node("On"));
        Go.SetReference(map.Node("Go"));
        Name.SetReference(map.Node("Name"));
        Bytes.SetReference(map.Node("Bytes"));
        Root.SetReference(map.Node("Root"));
        Slow.SetReference(map.Node("EnumEntry_Mode_Slow"));
        Mode.SetReference(map.Node("Mode"));
        Selector.SetReference(map.Node("Selector"));
        Port.SetReference(map.Node("Device"));
        Absent.SetReference(map.Node("Absent"));
        Any.SetReference(map.Node("Width"));
        AnyBase.SetReference(map.Node("Width"));
        OfAnotherKind.SetReference(map.Node("Name"));
    }

    CIntegerRef Width;
    CFloatRef Gain;
    CBooleanRef On;
    CCommandRef Go;
    CStringRef Name;
    CRegisterRef Bytes;
    CCategoryRef Root;
    CEnumEntryRef Slow;
    CEnumerationTRef<ModeEnums> Mode;
    CSelectorRef Selector;
    CPortRef Port;
    CIntegerRef Absent;
    CValueRef Any;
    CBaseRef AnyBase;
    CIntegerRef OfAnotherKind;
};

const char* const description =
    "<Category Name=\"Root\"><pFeature>Width</pFeature></Category>"
    "<Integer Name=\"Width\"><Value>4</Value><Min>2</Min><Max>10</Max><Inc>2</Inc><Unit>px</Unit></Integer>"
    "<Float Name=\"Gain\"><Value>1.5</Value><Min>0</Min><Max>2</Max><Unit>dB</Unit></Float>"
    "<Boolean Name=\"On\"><Value>false</Value></Boolean>"
    "<Command Name=\"Go\"><Value>0</Value><CommandValue>1</CommandValue></Command>"
    "<String Name=\"Name\"><Value>text</Value></String>"
    "<Register Name=\"Bytes\"><Address>8</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
    "</Register><Enumeration Name=\"Mode\"><EnumEntry Name=\"Fast\"><Value>10</Value></EnumEntry><EnumEntry "
    "Name=\"Slow\"><Value>20</Value></EnumEntry><EnumEntry Name=\"Other\"><Value>30</Value></EnumEntry>"
    "<Value>20</Value></Enumeration>"
    "<Integer Name=\"Selector\"><Value>0</Value><pSelected>Width</pSelected></Integer>";

TEST(References, PassTheOperationsOn)
{
    const SmallMap map(description);
    Camera camera(map);
    camera.Width = 6;
    EXPECT_EQ(map.Integer("Width")->GetValue(), 6);
    camera.Width.SetValue(8);
    EXPECT_EQ(camera.Width(), 8);
    EXPECT_EQ(*camera.Width, 8);
    EXPECT_EQ(camera.Width.GetMin() + camera.Width.GetMax() + camera.Width.GetInc(), 14);
    EXPECT_STREQ(camera.Width.GetUnit().c_str(), "px");
    EXPECT_EQ(camera.Width.GetNode(), map.Node("Width"));
    camera.Gain = 0.5;
    EXPECT_EQ(camera.Gain(), 0.5);
    EXPECT_FALSE(camera.Gain.HasInc());
    camera.On = true;
    EXPECT_TRUE(camera.On());
    camera.Go();
    EXPECT_TRUE(camera.Go.IsDone());
    camera.Name = "new";
    EXPECT_TRUE(*camera.Name == "new");
    const uint8_t written[] = {1, 2, 3, 4};
    camera.Bytes.Set(written, 4);
    EXPECT_EQ(map.port.bytes.at(11), 4);
    EXPECT_EQ(camera.Bytes.GetAddress(), 8);
    FeatureList_t features;
    camera.Root.GetFeatures(features);
    camera.Selector.GetSelectedFeatures(features);
    EXPECT_EQ(features.size(), 2u);
    EXPECT_TRUE(camera.Selector.IsSelector());
    EXPECT_EQ(camera.Slow.GetValue(), 20);
    uint8_t byte = 0;
    camera.Port.Read(&byte, 9, 1);
    EXPECT_EQ(byte, 2);
    EXPECT_STREQ(camera.Any.ToString().c_str(), "8");
    EXPECT_EQ(camera.AnyBase.GetAccessMode(), RW);
}

TEST(References, EnumeratorsMeetEntriesByTheirTexts)
{
    const SmallMap map(description);
    Camera camera(map);
    EXPECT_EQ(camera.Mode.GetValue(), Mode_Slow);
    camera.Mode = Mode_Fast;
    EXPECT_EQ(camera.Mode.GetIntValue(), 10);
    EXPECT_EQ(camera.Mode(), Mode_Fast);
    camera.Mode = gcstring("Slow");
    EXPECT_EQ(camera.Mode.GetEntry(Mode_Slow)->GetValue(), 20);
    EXPECT_EQ(camera.Mode.GetEntry(int64_t(10))->GetValue(), 10);
    EXPECT_TRUE(*camera.Mode == "Slow");
    camera.Mode = gcstring("Other");
    EXPECT_THROW(camera.Mode.GetValue(), RuntimeException) << "no enumerator has that text";
    EXPECT_THROW(camera.Mode.SetValue(Mode_Gone), OutOfRangeException);
    EXPECT_THROW(camera.Mode.SetEnumReference(2, "Gone"), OutOfRangeException);
    EXPECT_THROW(camera.Mode.SetEnumReference(-1, "Gone"), OutOfRangeException);
}

TEST(References, WithoutANodeAreNotImplemented)
{
    const SmallMap map(description);
    Camera camera(map);
    for (CIntegerRef* const reference : {&camera.Absent, &camera.OfAnotherKind})
    {
        EXPECT_FALSE(reference->IsValid());
        EXPECT_FALSE(IsImplemented(reference));
        EXPECT_THROW(reference->GetValue(), AccessException);
        EXPECT_THROW(*reference = 5, AccessException);
    }
    EXPECT_TRUE(IsWritable(camera.Width));
    camera.Width.SetReference(nullptr);
    EXPECT_FALSE(IsWritable(camera.Width));
}

} // namespace
