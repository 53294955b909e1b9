#include <GenICam.h>
#include <GenICamVersion.h>
#include <gtest/gtest.h>
#include <type_traits>

#define TEXT_OF(macro) TEXT_OF_(macro)
#define TEXT_OF_(text) #text

namespace
{

using namespace GENAPI_NAMESPACE;

TEST(Namespaces, AliasesNameTheVersionedNamespaces)
{
    EXPECT_TRUE((std::is_same<GenICam::gcstring, GENICAM_NAMESPACE::gcstring>::value));
    EXPECT_TRUE((std::is_same<GenApi::IPort, GENAPI_NAMESPACE::IPort>::value));
    EXPECT_TRUE((std::is_same<Version_t, GENICAM_NAMESPACE::Version_t>::value));
}

TEST(Namespaces, CarryTheVersionAndTheSuffix)
{
#ifdef GENICAM_COMPANY_SUFFIX
    EXPECT_STREQ(TEXT_OF(GENICAM_NAMESPACE), "GenICam_3_4_" TEXT_OF(GENICAM_COMPANY_SUFFIX));
    EXPECT_STREQ(TEXT_OF(GENAPI_NAMESPACE), "GenApi_3_4_" TEXT_OF(GENICAM_COMPANY_SUFFIX));
#else
    EXPECT_STREQ(TEXT_OF(GENICAM_NAMESPACE), "GenICam_3_4");
    EXPECT_STREQ(TEXT_OF(GENAPI_NAMESPACE), "GenApi_3_4");
#endif
}

TEST(Types, EnumeratorsHaveTheNumbersOfTheStandard)
{
    EXPECT_EQ(NI, 0);
    EXPECT_EQ(RW, 4);
    EXPECT_EQ(_UndefinedAccesMode, 5);
    EXPECT_EQ(_CycleDetectAccesMode, 6);
    EXPECT_EQ(Invisible, 3);
    EXPECT_EQ(_UndefinedVisibility, 99);
    EXPECT_EQ(WriteAround, 2);
    EXPECT_EQ(_UndefindedRepresentation, _UndefinedRepresentation);
    EXPECT_EQ(_UndefinedRepresentation, 7);
    EXPECT_EQ(USB, 4);
    EXPECT_EQ(Automatic, 3);
    EXPECT_EQ(fnScientific, 2);
    EXPECT_EQ(intfIPort, 11);
    EXPECT_EQ(ctValueChangingChildren, 6);
    EXPECT_EQ(listIncrement, 2);
    EXPECT_EQ(idNone, 2);
    EXPECT_EQ(v1_1, 2);
    EXPECT_EQ(_Undefined, -1);
    EXPECT_EQ(csmOnce, 2);
}

TEST(Types, APortNeedsTheTransfersAndTheAccessModeOnly)
{
    struct Memory : IPort
    {
        void Read(void*, int64_t, int64_t) override {}
        void Write(const void*, int64_t, int64_t) override {}
        EAccessMode GetAccessMode() const override { return RO; }
    } port;
    IBase* const base = &port;
    EXPECT_EQ(base->GetAccessMode(), RO);
    EXPECT_EQ(dynamic_cast<IPort*>(base), &port);
}

} // namespace
