// Descriptions that are none, or too much: each is refused when it is used, with words, and the module stays usable.
#include "tests/boundary/described_camera.h"
#include "tests/boundary/producer_errors.h"
#include "tests/unit/genicam/zip_builder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace koro::test
{

namespace
{

using testing::HasSubstr;

using Strings = std::vector<std::string>;

class DescriptionFaults : public DescribedCamera
{
protected:
    // The error of using the description; used twice, since the second use must report the same error.
    Error Refusal(const std::string& bytes, const std::string& fileName = "test.xml")
    {
        DescribeBy(bytes, fileName);
        const auto map = NodeMapOf(tree.remoteDevice);
        std::size_t count = 0;
        KORO_NodeHandle node = nullptr;
        const Error first = Outcome(KORO_NodeMap_GetNumNodes(map, &count));
        EXPECT_EQ(Outcome(KORO_NodeMap_FindNode(map, "Device", 7, &node)), first);
        EXPECT_EQ(count, 0u);
        EXPECT_EQ(node, nullptr);
        return first;
    }

    void ExpectRefused(const std::string& bytes, const std::string& reason, const std::string& fileName = "test.xml")
    {
        const Error refusal = Refusal(bytes, fileName);
        EXPECT_EQ(refusal.code, KORO_RETURN_CODE_ERROR);
        EXPECT_THAT(refusal.text, HasSubstr(reason));
        EXPECT_LT(refusal.text.size(), 4096u);
    }
};

} // namespace

TEST_F(DescriptionFaults, EmptyOneDoesNotKeepTheCameraFromOpening)
{
    producer->Answer("GCReadPort", GenTL::GC_ERR_SUCCESS);
    for (const auto* fileName : {"a.xml", "a.zip"})
    {
        producer->Edit([&](scripted::Tree& edited) { DescribePort(RemotePort(edited), "", fileName); });
        KORO_Device_Destruct(tree.device);
        EXPECT_EQ(Outcome(KORO_DeviceDescriptor_OpenDevice(tree.deviceDescriptor, 4, &tree.device)), Error{});
    }
    EXPECT_EQ(producer->Open(), (Strings{"if0", "if0-dev0", "system"}));
}

TEST_F(DescriptionFaults, OneThatIsCutOff)
{
    const std::string whole = DescriptionOf(IntRegister("A", 0));
    for (std::size_t size = 1; size < whole.size(); size += 37)
    {
        SCOPED_TRACE(size);
        EXPECT_EQ(Refusal(whole.substr(0, size)).code, KORO_RETURN_CODE_ERROR);
    }
}

TEST_F(DescriptionFaults, OneThatIsNoXML)
{
    ExpectRefused("just some text", "XML");
    ExpectRefused(std::string(1000, '\0'), "");
    ExpectRefused(
        std::string(
            "\x7f"
            "ELF\2\1\1\0",
            8),
        "");
    ExpectRefused("<html><body/></html>", "");
}

TEST_F(DescriptionFaults, OneElementOfTenMegabytes)
{
    const std::string name(10u << 20, 'a');
    const auto map = Describe("<Category Name=\"" + name + "\"><ToolTip>" + name + "</ToolTip></Category>");
    EXPECT_EQ(GetText(KORO_Node_GetToolTip, Find(map, name)), name);
    KORO_NodeHandle node = nullptr;
    EXPECT_EQ(
        Outcome(KORO_NodeMap_FindNode(map, name.c_str(), name.size(), &node)),
        (Error{KORO_RETURN_CODE_NOT_FOUND, "There is no node with the given name (" + name.substr(1) + ")!"}));
}

TEST_F(DescriptionFaults, ZipThatIsNone)
{
    ExpectRefused(DescriptionOf(""), "zip archive", "a.zip");
    ExpectRefused("PK\3\4 and no more", "zip archive", "a.zip");
    ZipBuilder zip;
    zip.AddDeflated("a.xml", DescriptionOf(IntRegister("A", 0)));
    const std::string whole = zip.Bytes();
    ExpectRefused(whole.substr(0, whole.size() / 2), "zip archive", "a.zip");
}

TEST_F(DescriptionFaults, ZipWithADescriptionServes)
{
    ZipBuilder zip;
    zip.AddDeflated("a.xml", DescriptionOf(IntRegister("A", 0)));
    DescribeBy(zip.Bytes(), "a.zip");
    const auto map = NodeMapOf(tree.remoteDevice);
    EXPECT_EQ(Get<std::size_t>(KORO_NodeMap_GetNumNodes, map), 2u);
    EXPECT_EQ(GetText(KORO_Node_GetName, Find(map, "A")), "A");
}

TEST_F(DescriptionFaults, ZipThatExpandsAThousandfoldIsStillReadWithinTheBound)
{
    ZipBuilder zip;
    zip.AddDeflated("a.xml", DescriptionOf("<!--" + std::string(8u << 20, ' ') + "-->"));
    ASSERT_LT(zip.Bytes().size() * 900, 8u << 20);
    DescribeBy(zip.Bytes(), "a.zip");
    EXPECT_EQ(Get<std::size_t>(KORO_NodeMap_GetNumNodes, NodeMapOf(tree.remoteDevice)), 1u);
}

TEST_F(DescriptionFaults, ZipThatClaimsOrHoldsTooMuchIsRefused)
{
    ZipBuilder zip;
    auto& entry = zip.AddDeflated("a.xml", DescriptionOf(""));
    entry.size = 0xfffffff0u;
    ExpectRefused(zip.Bytes(), "zip archive", "a.zip");
}

TEST_F(DescriptionFaults, ProducerThatFailsWhileItIsFetchedLeavesItOut)
{
    for (const auto& error : producerErrors)
    {
        producer->AnswerAtCall("GCReadPort", 2, error.code); // the first is the device's own
        Reopen();
        const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
        EXPECT_EQ(Get<std::size_t>(KORO_Module_GetNumNodeMaps, module), 0u) << error.name;
    }
}

TEST_F(DescriptionFaults, ShortTransferLeavesZerosThatAreRefusedOrNot)
{
    producer->SetCount("GCReadPort", 100);
    DescribeBy(DescriptionOf(IntRegister("A", 0)));
    const auto map = NodeMapOf(tree.remoteDevice);
    std::size_t count = 0;
    EXPECT_EQ(Outcome(KORO_NodeMap_GetNumNodes(map, &count)).code, KORO_RETURN_CODE_ERROR);
}

TEST_F(DescriptionFaults, LockOfAMapWithoutADescriptionTellsNoReason)
{
    DescribeBy("no description");
    const auto map = NodeMapOf(tree.remoteDevice);
    const Error untranslated{KORO_RETURN_CODE_ERROR, "Unhandled exception!"};
    KORO_Bool8 locked = 2;
    EXPECT_EQ(Outcome(KORO_NodeMap_Lock(map)), untranslated);
    EXPECT_EQ(Outcome(KORO_NodeMap_Unlock(map)), untranslated);
    EXPECT_EQ(Outcome(KORO_NodeMap_TryLock(map, &locked)), untranslated);
    EXPECT_EQ(locked, 2);
    EXPECT_EQ(Outcome(KORO_NodeMap_TryLock(map, nullptr)), untranslated); // the output is looked at last
}

TEST_F(DescriptionFaults, OneBrokenDescriptionDoesNotCostTheOther)
{
    producer.Folder().MakeFile("tl_remotedevice_dbg.xml", "broken");
    DescribeBy(DescriptionOf(""));
    std::size_t count = 0;
    EXPECT_EQ(Outcome(KORO_NodeMap_GetNumNodes(NodeMapOf(tree.remoteDevice, 0), &count)).code, KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(Get<std::size_t>(KORO_NodeMap_GetNumNodes, NodeMapOf(tree.remoteDevice, 1)), 1u);
}

TEST_F(DescriptionFaults, DebugFileIsReadAnewUntilItIsGood)
{
    const auto path = producer.Folder().MakeFile("tl_remotedevice_dbg.xml", "broken");
    Reopen();
    const auto map = NodeMapOf(tree.remoteDevice);
    std::size_t count = 0;
    EXPECT_EQ(Outcome(KORO_NodeMap_GetNumNodes(map, &count)).code, KORO_RETURN_CODE_ERROR);
    std::filesystem::remove(path);
    const Error gone = Outcome(KORO_NodeMap_GetNumNodes(map, &count));
    EXPECT_EQ(gone.code, KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(gone.text, HasSubstr(path));

    producer.Folder().MakeFile("tl_remotedevice_dbg.xml", DescriptionOf(""));
    EXPECT_EQ(Outcome(KORO_NodeMap_GetNumNodes(map, &count)), Error{});
    EXPECT_EQ(count, 1u);
}

// A reader of the pipe would wait for ever.
TEST_F(DescriptionFaults, PipeInPlaceOfADebugFileIsRefused)
{
    const std::string path = producer.Folder().File("tl_remotedevice_dbg.xml");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    Reopen();
    std::size_t count = 0;
    EXPECT_EQ(
        Outcome(KORO_NodeMap_GetNumNodes(NodeMapOf(tree.remoteDevice), &count)),
        (Error{KORO_RETURN_CODE_ERROR, "The description file (" + path + ") is no regular file!"}));
}

TEST_F(DescriptionFaults, DebugFileBeyondTheBoundIsRefused)
{
    const auto path = producer.Folder().MakeFile("tl_remotedevice_dbg.xml", "");
    std::filesystem::resize_file(path, (256u << 20) + 1); // takes no room
    Reopen();
    std::size_t count = 0;
    EXPECT_EQ(
        Outcome(KORO_NodeMap_GetNumNodes(NodeMapOf(tree.remoteDevice), &count)),
        (Error{
            KORO_RETURN_CODE_ERROR,
            "The description file (" + path + ") holds 268435457 bytes, the bound is 268435456!"}));
}

TEST_F(DescriptionFaults, DeepOrCircularOnesEndInAnAnswer)
{
    std::string chain;
    for (int node = 0; node < 5000; ++node)
    {
        chain += "<Integer Name=\"N" + std::to_string(node) + "\"><pIsAvailable>N" + std::to_string(node + 1) +
                 "</pIsAvailable><Value>1</Value></Integer>";
    }
    chain += "<Integer Name=\"N5000\"><pIsAvailable>N0</pIsAvailable><Value>1</Value></Integer>";
    const auto map = Describe(chain);
    std::size_t count = 0;
    if (KORO_NodeMap_GetNumNodes(map, &count) != KORO_RETURN_CODE_SUCCESS)
    {
        EXPECT_NE(LastError().text, "");
        return;
    }
    std::int32_t status = -1;
    const Error outcome = Outcome(KORO_Node_GetAccessStatus(Find(map, "N0"), &status));
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
    EXPECT_NE(outcome.text, "");
}

} // namespace koro::test
