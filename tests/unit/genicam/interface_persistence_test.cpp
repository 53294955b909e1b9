// Compile-time proof of the interface of persistence and of files: operations, arguments, results, bases.
#include "tests/unit/genicam/interface_proof.h"

#include <GenApi/Filestream.h>
#include <GenApi/Persistence.h>
#include <gtest/gtest.h>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;

static_assert(std::is_copy_constructible<CSelectorState>::value && std::is_copy_assignable<CSelectorState>::value, "");
HAS(CSelectorState, SetFirst, bool, ());
HAS(CSelectorState, SetNext, bool, ());
HAS(CSelectorState, AddSelector, void, (IValue&));
HAS(CSelectorState, AddSelector, void, (gcstring, gcstring));
HAS(CSelectorState, GetNodeName, gcstring, ());
HAS(CSelectorState, GetNodeValue, gcstring, ());
HAS(CSelectorState, IsEmpty, bool, ());
HAS(CSelectorState, RestoreState, bool, (INodeMap*, gcstring_vector*));

HAS(IPersistScript, SetInfo, void, (const gcstring&));
HAS(IPersistScript, PersistFeature, void, (IValue&, CSelectorSet*));
static_assert(std::is_base_of<IPersistScript, CFeatureBag>::value, "");
static_assert(std::is_default_constructible<CFeatureBag>::value && std::is_copy_constructible<CFeatureBag>::value, "");
static_assert(std::is_copy_assignable<CFeatureBag>::value && std::has_virtual_destructor<CFeatureBag>::value, "");
HAS(CFeatureBag, SetInfo, void, (const gcstring&));
HAS(CFeatureBag, PersistFeature, void, (IValue&, CSelectorSet*));
HAS(CFeatureBag, LoadFromBag, bool, (INodeMap*, bool, gcstring_vector*));
HAS(CFeatureBag, StoreToBag, int64_t, (INodeMap*, const int, gcstring_vector*));
HAS(CFeatureBag, operator==, bool, (const CFeatureBag&) const);
HAS(CFeatureBag, ToString, gcstring, ());
HAS(CFeatureBag, Destroy, void, ());
HAS(CFeatureBag, GetBagName, const gcstring&, () const);
HAS(CFeatureBag, SetBagName, void, (const gcstring&));

HAS(ISelectorDigit, SetFirst, bool, ());
HAS(ISelectorDigit, SetNext, bool, (bool));
HAS(ISelectorDigit, Restore, void, ());
HAS(ISelectorDigit, ToString, gcstring, ());
HAS(ISelectorDigit, GetState, void, (CSelectorState&));
HAS(ISelectorDigit, GetSelectorList, void, (FeatureList_t&, bool));
static_assert(std::has_virtual_destructor<ISelectorDigit>::value, "");
static_assert(std::is_constructible<CSelectorSet, IBase*>::value, "");
static_assert(!std::is_copy_constructible<CSelectorSet>::value && !std::is_copy_assignable<CSelectorSet>::value, "");
static_assert(is_same<decltype(std::declval<CSelectorSet>().IsEmpty()), bool>, "");

HAS(IFileProtocolAdapter, attach, bool, (INodeMap*));
HAS(IFileProtocolAdapter, openFile, bool, (const char*, std::ios_base::openmode));
HAS(IFileProtocolAdapter, closeFile, bool, (const char*));
HAS(IFileProtocolAdapter, write, GenICam_streamsize, (const char*, int64_t, int64_t, const char*));
HAS(IFileProtocolAdapter, read, GenICam_streamsize, (char*, int64_t, GenICam_streamsize, const char*));
HAS(IFileProtocolAdapter, getBufSize, int64_t, (const char*, std::ios_base::openmode));
HAS(IFileProtocolAdapter, deleteFile, bool, (const char*));
static_assert(!std::has_virtual_destructor<IFileProtocolAdapter>::value, "");
static_assert(std::is_base_of<IFileProtocolAdapter, FileProtocolAdapter>::value, "");
static_assert(std::is_default_constructible<FileProtocolAdapter>::value, "");
static_assert(std::has_virtual_destructor<FileProtocolAdapter>::value, "");
static_assert(!std::is_copy_constructible<FileProtocolAdapter>::value, "");
static_assert(!std::is_copy_assignable<FileProtocolAdapter>::value, "");
static_assert(is_same<IDevFileStream, IDevFileStreamBase<char, std::char_traits<char>>>, "");
static_assert(is_same<ODevFileStream, ODevFileStreamBase<char, std::char_traits<char>>>, "");
static_assert(std::is_base_of<std::istream, IDevFileStream>::value, "");
static_assert(std::is_base_of<std::ostream, ODevFileStream>::value, "");

// A member of a class that derives from the adapter: the operations can be replaced.
class Counting : public FileProtocolAdapter
{
public:
    bool deleteFile(const char*) override { return ++deletions > 0; }

    int deletions = 0;
};

TEST(Interface, OperationsOfTheFileAdapterCanBeReplaced)
{
    Counting counting;
    IFileProtocolAdapter& adapter = counting;
    EXPECT_TRUE(adapter.deleteFile("x"));
    EXPECT_EQ(counting.deletions, 1);
}

} // namespace
