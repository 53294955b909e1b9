#include "tests/unit/image/named_format.h"

#include <thread>

namespace
{

TEST(ImageLibrary, GivesItsVersion)
{
    uint32_t major = 0, minor = 0, subminor = 77;
    EXPECT_EQ(KIMG_Library_GetVersion(&major, &minor, &subminor), KIMG_RETURN_CODE_SUCCESS);
    EXPECT_EQ(major, 1u);
    EXPECT_NE(subminor, 77u);
    EXPECT_EQ(KIMG_Library_GetVersion(&major, nullptr, &subminor), KIMG_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(LastText(), "minor is not a valid pointer!");
}

TEST(ImageLibrary, KeepsTheLastErrorOfEachThread)
{
    ASSERT_EQ(KIMG_PixelFormat_GetNum(nullptr), KIMG_RETURN_CODE_INVALID_ARGUMENT);
    std::string other = "unset";
    std::thread([&] { other = LastText(); }).join();
    EXPECT_EQ(other, "");
    EXPECT_EQ(LastText(), "numPixelFormats is not a valid pointer!");
}

TEST(ImageLibrary, CutsATextThatIsTooLongForTheRecord)
{
    const std::string name(2000, 'x');
    uint32_t number = 0;
    EXPECT_EQ(KIMG_PixelFormat_FindByName(name.c_str(), &number), KIMG_RETURN_CODE_NOT_FOUND);
    EXPECT_EQ(LastText().size(), 511u);
}

} // namespace
