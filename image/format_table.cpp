#include "image/format_table.h"

#include "image/failure.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace koro::image
{

namespace
{

constexpr Content Mono()
{
    return {KIMG_KIND_MONO, KIMG_ARRANGEMENT_INTERLEAVED, "1"};
}
constexpr Content Bayer(Mosaic mosaic)
{
    return {KIMG_KIND_BAYER, KIMG_ARRANGEMENT_INTERLEAVED, "1", mosaic};
}
constexpr Content Sparse()
{
    return {KIMG_KIND_SPARSE_FILTER, KIMG_ARRANGEMENT_INTERLEAVED, "1"};
}
constexpr Content Colors(std::string_view order)
{
    return {KIMG_KIND_RGB, KIMG_ARRANGEMENT_INTERLEAVED, order};
}
constexpr Content PlanarColors(std::string_view order)
{
    return {KIMG_KIND_RGB, KIMG_ARRANGEMENT_PLANAR, order};
}
constexpr Content YCbCr(std::string_view order, ColorSpace space)
{
    return {KIMG_KIND_YCBCR, KIMG_ARRANGEMENT_INTERLEAVED, order, Mosaic::None, space};
}
constexpr Content Semiplanar(std::string_view order, uint8_t groupHeight)
{
    return {KIMG_KIND_YCBCR, KIMG_ARRANGEMENT_SEMIPLANAR, order, Mosaic::None, ColorSpace::Full, groupHeight};
}
constexpr Content BiColor(Mosaic mosaic)
{
    return {KIMG_KIND_BICOLOR, KIMG_ARRANGEMENT_INTERLEAVED, "XG", mosaic};
}
constexpr Content Coordinates(std::string_view order)
{
    return {KIMG_KIND_COORDINATE, KIMG_ARRANGEMENT_INTERLEAVED, order};
}
constexpr Content PlanarCoordinates(std::string_view order)
{
    return {KIMG_KIND_COORDINATE, KIMG_ARRANGEMENT_PLANAR, order};
}
constexpr Content Confidence()
{
    return {KIMG_KIND_CONFIDENCE, KIMG_ARRANGEMENT_INTERLEAVED, "1"};
}
constexpr Content Data()
{
    return {KIMG_KIND_DATA, KIMG_ARRANGEMENT_INTERLEAVED, "1"};
}

constexpr Samples Whole(uint8_t bits)
{
    return {KIMG_PACKING_WHOLE_BYTES, KIMG_SAMPLE_TYPE_UNSIGNED, bits};
}
constexpr Samples Signed(uint8_t bits)
{
    return {KIMG_PACKING_WHOLE_BYTES, KIMG_SAMPLE_TYPE_SIGNED, bits};
}
constexpr Samples Float(uint8_t bits)
{
    return {KIMG_PACKING_WHOLE_BYTES, KIMG_SAMPLE_TYPE_FLOAT, bits};
}
constexpr Samples Dense(uint8_t bits)
{
    return {KIMG_PACKING_DENSE, KIMG_SAMPLE_TYPE_UNSIGNED, bits};
}
constexpr Samples Gvsp(uint8_t bits)
{
    return {KIMG_PACKING_GVSP, KIMG_SAMPLE_TYPE_UNSIGNED, bits};
}
constexpr Samples Fields(uint8_t bits)
{
    return {KIMG_PACKING_PIXEL_FIELDS, KIMG_SAMPLE_TYPE_UNSIGNED, bits};
}

constexpr PixelFormat formats[] = {
    // clang-format off
    {0x01010037, "Mono1p", Mono(), Dense(1)},
    {0x010100C5, "Confidence1p", Confidence(), Dense(1)},
    {0x01020038, "Mono2p", Mono(), Dense(2)},
    {0x01040039, "Mono4p", Mono(), Dense(4)},
    {0x0104010D, "BayerGR4p", Bayer(Mosaic::GR), Dense(4)},
    {0x0104010E, "BayerRG4p", Bayer(Mosaic::RG), Dense(4)},
    {0x0104010F, "BayerGB4p", Bayer(Mosaic::GB), Dense(4)},
    {0x01040110, "BayerBG4p", Bayer(Mosaic::BG), Dense(4)},
    {0x01080001, "Mono8", Mono(), Whole(8)},
    {0x01080002, "Mono8s", Mono(), Signed(8)},
    {0x01080008, "BayerGR8", Bayer(Mosaic::GR), Whole(8)},
    {0x01080009, "BayerRG8", Bayer(Mosaic::RG), Whole(8)},
    {0x0108000A, "BayerGB8", Bayer(Mosaic::GB), Whole(8)},
    {0x0108000B, "BayerBG8", Bayer(Mosaic::BG), Whole(8)},
    {0x01080067, "SCF1WBWG8", Sparse(), Whole(8)},
    {0x0108006E, "SCF1WGWB8", Sparse(), Whole(8)},
    {0x01080075, "SCF1WGWR8", Sparse(), Whole(8)},
    {0x0108007C, "SCF1WRWG8", Sparse(), Whole(8)},
    {0x010800AF, "Coord3D_A8", Coordinates("A"), Whole(8)},
    {0x010800B0, "Coord3D_B8", Coordinates("B"), Whole(8)},
    {0x010800B1, "Coord3D_C8", Coordinates("C"), Whole(8)},
    {0x010800C4, "Confidence1", Confidence(), Whole(1)},
    {0x010800C6, "Confidence8", Confidence(), Whole(8)},
    {0x010800C9, "R8", Mono(), Whole(8)},
    {0x010800CD, "G8", Mono(), Whole(8)},
    {0x010800D1, "B8", Mono(), Whole(8)},
    {0x01080116, "Data8", Data(), Whole(8)},
    {0x01080117, "Data8s", Data(), Signed(8)},
    {0x010A0046, "Mono10p", Mono(), Dense(10)},
    {0x010A0052, "BayerBG10p", Bayer(Mosaic::BG), Dense(10)},
    {0x010A0054, "BayerGB10p", Bayer(Mosaic::GB), Dense(10)},
    {0x010A0056, "BayerGR10p", Bayer(Mosaic::GR), Dense(10)},
    {0x010A0058, "BayerRG10p", Bayer(Mosaic::RG), Dense(10)},
    {0x010A0069, "SCF1WBWG10p", Sparse(), Dense(10)},
    {0x010A0070, "SCF1WGWB10p", Sparse(), Dense(10)},
    {0x010A0077, "SCF1WGWR10p", Sparse(), Dense(10)},
    {0x010A007E, "SCF1WRWG10p", Sparse(), Dense(10)},
    {0x010A00CA, "R10_Deprecated", Mono(), Whole(10), Refusal::WrongSize},
    {0x010A00CE, "G10_Deprecated", Mono(), Whole(10), Refusal::WrongSize},
    {0x010A00D2, "B10_Deprecated", Mono(), Whole(10), Refusal::WrongSize},
    {0x010A00D5, "Coord3D_A10p", Coordinates("A"), Dense(10)},
    {0x010A00D6, "Coord3D_B10p", Coordinates("B"), Dense(10)},
    {0x010A00D7, "Coord3D_C10p", Coordinates("C"), Dense(10)},
    {0x010C0004, "Mono10Packed", Mono(), Gvsp(10)},
    {0x010C0006, "Mono12Packed", Mono(), Gvsp(12)},
    {0x010C0026, "BayerGR10Packed", Bayer(Mosaic::GR), Gvsp(10)},
    {0x010C0027, "BayerRG10Packed", Bayer(Mosaic::RG), Gvsp(10)},
    {0x010C0028, "BayerGB10Packed", Bayer(Mosaic::GB), Gvsp(10)},
    {0x010C0029, "BayerBG10Packed", Bayer(Mosaic::BG), Gvsp(10)},
    {0x010C002A, "BayerGR12Packed", Bayer(Mosaic::GR), Gvsp(12)},
    {0x010C002B, "BayerRG12Packed", Bayer(Mosaic::RG), Gvsp(12)},
    {0x010C002C, "BayerGB12Packed", Bayer(Mosaic::GB), Gvsp(12)},
    {0x010C002D, "BayerBG12Packed", Bayer(Mosaic::BG), Gvsp(12)},
    {0x010C0047, "Mono12p", Mono(), Dense(12)},
    {0x010C0053, "BayerBG12p", Bayer(Mosaic::BG), Dense(12)},
    {0x010C0055, "BayerGB12p", Bayer(Mosaic::GB), Dense(12)},
    {0x010C0057, "BayerGR12p", Bayer(Mosaic::GR), Dense(12)},
    {0x010C0059, "BayerRG12p", Bayer(Mosaic::RG), Dense(12)},
    {0x010C006B, "SCF1WBWG12p", Sparse(), Dense(12)},
    {0x010C0072, "SCF1WGWB12p", Sparse(), Dense(12)},
    {0x010C0079, "SCF1WGWR12p", Sparse(), Dense(12)},
    {0x010C0080, "SCF1WRWG12p", Sparse(), Dense(12)},
    {0x010C00CB, "R12_Deprecated", Mono(), Whole(12), Refusal::WrongSize},
    {0x010C00CF, "G12_Deprecated", Mono(), Whole(12), Refusal::WrongSize},
    {0x010C00D3, "B12_Deprecated", Mono(), Whole(12), Refusal::WrongSize},
    {0x010C00D8, "Coord3D_A12p", Coordinates("A"), Dense(12)},
    {0x010C00D9, "Coord3D_B12p", Coordinates("B"), Dense(12)},
    {0x010C00DA, "Coord3D_C12p", Coordinates("C"), Dense(12)},
    {0x010E0104, "Mono14p", Mono(), Dense(14)},
    {0x010E0105, "BayerGR14p", Bayer(Mosaic::GR), Dense(14)},
    {0x010E0106, "BayerRG14p", Bayer(Mosaic::RG), Dense(14)},
    {0x010E0107, "BayerGB14p", Bayer(Mosaic::GB), Dense(14)},
    {0x010E0108, "BayerBG14p", Bayer(Mosaic::BG), Dense(14)},
    {0x01100003, "Mono10", Mono(), Whole(10)},
    {0x01100005, "Mono12", Mono(), Whole(12)},
    {0x01100007, "Mono16", Mono(), Whole(16)},
    {0x0110000C, "BayerGR10", Bayer(Mosaic::GR), Whole(10)},
    {0x0110000D, "BayerRG10", Bayer(Mosaic::RG), Whole(10)},
    {0x0110000E, "BayerGB10", Bayer(Mosaic::GB), Whole(10)},
    {0x0110000F, "BayerBG10", Bayer(Mosaic::BG), Whole(10)},
    {0x01100010, "BayerGR12", Bayer(Mosaic::GR), Whole(12)},
    {0x01100011, "BayerRG12", Bayer(Mosaic::RG), Whole(12)},
    {0x01100012, "BayerGB12", Bayer(Mosaic::GB), Whole(12)},
    {0x01100013, "BayerBG12", Bayer(Mosaic::BG), Whole(12)},
    {0x01100025, "Mono14", Mono(), Whole(14)},
    {0x0110002E, "BayerGR16", Bayer(Mosaic::GR), Whole(16)},
    {0x0110002F, "BayerRG16", Bayer(Mosaic::RG), Whole(16)},
    {0x01100030, "BayerGB16", Bayer(Mosaic::GB), Whole(16)},
    {0x01100031, "BayerBG16", Bayer(Mosaic::BG), Whole(16)},
    {0x01100068, "SCF1WBWG10", Sparse(), Whole(10)},
    {0x0110006A, "SCF1WBWG12", Sparse(), Whole(12)},
    {0x0110006C, "SCF1WBWG14", Sparse(), Whole(14)},
    {0x0110006D, "SCF1WBWG16", Sparse(), Whole(16)},
    {0x0110006F, "SCF1WGWB10", Sparse(), Whole(10)},
    {0x01100071, "SCF1WGWB12", Sparse(), Whole(12)},
    {0x01100073, "SCF1WGWB14", Sparse(), Whole(14)},
    {0x01100074, "SCF1WGWB16", Sparse(), Whole(16)},
    {0x01100076, "SCF1WGWR10", Sparse(), Whole(10)},
    {0x01100078, "SCF1WGWR12", Sparse(), Whole(12)},
    {0x0110007A, "SCF1WGWR14", Sparse(), Whole(14)},
    {0x0110007B, "SCF1WGWR16", Sparse(), Whole(16)},
    {0x0110007D, "SCF1WRWG10", Sparse(), Whole(10)},
    {0x0110007F, "SCF1WRWG12", Sparse(), Whole(12)},
    {0x01100081, "SCF1WRWG14", Sparse(), Whole(14)},
    {0x01100082, "SCF1WRWG16", Sparse(), Whole(16)},
    {0x011000B6, "Coord3D_A16", Coordinates("A"), Whole(16)},
    {0x011000B7, "Coord3D_B16", Coordinates("B"), Whole(16)},
    {0x011000B8, "Coord3D_C16", Coordinates("C"), Whole(16)},
    {0x011000C7, "Confidence16", Confidence(), Whole(16)},
    {0x011000CC, "R16", Mono(), Whole(16)},
    {0x011000D0, "G16", Mono(), Whole(16)},
    {0x011000D4, "B16", Mono(), Whole(16)},
    {0x01100109, "BayerGR14", Bayer(Mosaic::GR), Whole(14)},
    {0x0110010A, "BayerRG14", Bayer(Mosaic::RG), Whole(14)},
    {0x0110010B, "BayerGB14", Bayer(Mosaic::GB), Whole(14)},
    {0x0110010C, "BayerBG14", Bayer(Mosaic::BG), Whole(14)},
    {0x01100118, "Data16", Data(), Whole(16)},
    {0x01100119, "Data16s", Data(), Signed(16)},
    {0x01100120, "R10", Mono(), Whole(10)},
    {0x01100121, "R12", Mono(), Whole(12)},
    {0x01100122, "G10", Mono(), Whole(10)},
    {0x01100123, "G12", Mono(), Whole(12)},
    {0x01100124, "B10", Mono(), Whole(10)},
    {0x01100125, "B12", Mono(), Whole(12)},
    {0x012000BD, "Coord3D_A32f", Coordinates("A"), Float(32)},
    {0x012000BE, "Coord3D_B32f", Coordinates("B"), Float(32)},
    {0x012000BF, "Coord3D_C32f", Coordinates("C"), Float(32)},
    {0x012000C8, "Confidence32f", Confidence(), Float(32)},
    {0x01200111, "Mono32", Mono(), Whole(32)},
    {0x0120011A, "Data32", Data(), Whole(32)},
    {0x0120011B, "Data32s", Data(), Signed(32)},
    {0x0120011C, "Data32f", Data(), Float(32)},
    {0x0140011D, "Data64", Data(), Whole(64)},
    {0x0140011E, "Data64s", Data(), Signed(64)},
    {0x0140011F, "Data64f", Data(), Float(64)},
    {0x020C001E, "YUV411_8_UYYVYY", YCbCr("UYYVYY", ColorSpace::Full), Whole(8)},
    {0x020C003C, "YCbCr411_8_CbYYCrYY", YCbCr("UYYVYY", ColorSpace::Full), Whole(8)},
    {0x020C003F, "YCbCr601_411_8_CbYYCrYY", YCbCr("UYYVYY", ColorSpace::BT601), Whole(8)},
    {0x020C0042, "YCbCr709_411_8_CbYYCrYY", YCbCr("UYYVYY", ColorSpace::BT709), Whole(8)},
    {0x020C005A, "YCbCr411_8", YCbCr("YYUYYV", ColorSpace::Full), Whole(8)},
    {0x020C00F9, "YCbCr2020_411_8_CbYYCrYY", YCbCr("UYYVYY", ColorSpace::BT2020), Whole(8)},
    {0x020C0112, "YCbCr420_8_YY_CbCr_Semiplanar", Semiplanar("UV", 2), Whole(8)},
    {0x020C0114, "YCbCr420_8_YY_CrCb_Semiplanar", Semiplanar("VU", 2), Whole(8)},
    {0x0210001F, "YUV422_8_UYVY", YCbCr("UYVY", ColorSpace::Full), Whole(8)},
    {0x02100032, "YUV422_8", YCbCr("YUYV", ColorSpace::Full), Whole(8)},
    {0x02100035, "RGB565p", Colors("RGB"), Fields(6)},
    {0x02100036, "BGR565p", Colors("BGR"), Fields(6)},
    {0x0210003B, "YCbCr422_8", YCbCr("YUYV", ColorSpace::Full), Whole(8)},
    {0x0210003E, "YCbCr601_422_8", YCbCr("YUYV", ColorSpace::BT601), Whole(8)},
    {0x02100041, "YCbCr709_422_8", YCbCr("YUYV", ColorSpace::BT709), Whole(8)},
    {0x02100043, "YCbCr422_8_CbYCrY", YCbCr("UYVY", ColorSpace::Full), Whole(8)},
    {0x02100044, "YCbCr601_422_8_CbYCrY", YCbCr("UYVY", ColorSpace::BT601), Whole(8)},
    {0x02100045, "YCbCr709_422_8_CbYCrY", YCbCr("UYVY", ColorSpace::BT709), Whole(8)},
    {0x021000A5, "BiColorRGBG8", BiColor(Mosaic::RG), Whole(8)},
    {0x021000A6, "BiColorBGRG8", BiColor(Mosaic::BG), Whole(8)},
    {0x021000B4, "Coord3D_AC8", Coordinates("AC"), Whole(8)},
    {0x021000B5, "Coord3D_AC8_Planar", PlanarCoordinates("AC"), Whole(8)},
    {0x021000FA, "YCbCr2020_422_8", YCbCr("YUYV", ColorSpace::BT2020), Whole(8)},
    {0x021000FB, "YCbCr2020_422_8_CbYCrY", YCbCr("UYVY", ColorSpace::BT2020), Whole(8)},
    {0x02100113, "YCbCr422_8_YY_CbCr_Semiplanar", Semiplanar("UV", 1), Whole(8)},
    {0x02100115, "YCbCr422_8_YY_CrCb_Semiplanar", Semiplanar("VU", 1), Whole(8)},
    {0x02140087, "YCbCr422_10p", YCbCr("YUYV", ColorSpace::Full), Dense(10)},
    {0x0214008E, "YCbCr601_422_10p", YCbCr("YUYV", ColorSpace::BT601), Dense(10)},
    {0x02140096, "YCbCr709_422_10p", YCbCr("YUYV", ColorSpace::BT709), Dense(10)},
    {0x0214009A, "YCbCr422_10p_CbYCrY", YCbCr("UYVY", ColorSpace::Full), Dense(10)},
    {0x0214009E, "YCbCr601_422_10p_CbYCrY", YCbCr("UYVY", ColorSpace::BT601), Dense(10)},
    {0x021400A2, "YCbCr709_422_10p_CbYCrY", YCbCr("UYVY", ColorSpace::BT709), Dense(10)},
    {0x021400A8, "BiColorRGBG10p", BiColor(Mosaic::RG), Dense(10)},
    {0x021400AA, "BiColorBGRG10p", BiColor(Mosaic::BG), Dense(10)},
    {0x021400F0, "Coord3D_AC10p", Coordinates("AC"), Dense(10)},
    {0x021400F1, "Coord3D_AC10p_Planar", PlanarCoordinates("AC"), Dense(10)},
    {0x021400FE, "YCbCr2020_422_10p", YCbCr("YUYV", ColorSpace::BT2020), Dense(10)},
    {0x021400FF, "YCbCr2020_422_10p_CbYCrY", YCbCr("UYVY", ColorSpace::BT2020), Dense(10)},
    {0x02180014, "RGB8", Colors("RGB"), Whole(8)},
    {0x02180015, "BGR8", Colors("BGR"), Whole(8)},
    {0x02180020, "YUV8_UYV", YCbCr("UYV", ColorSpace::Full), Whole(8)},
    {0x02180021, "RGB8_Planar", PlanarColors("RGB"), Whole(8)},
    {0x0218003A, "YCbCr8_CbYCr", YCbCr("UYV", ColorSpace::Full), Whole(8)},
    {0x0218003D, "YCbCr601_8_CbYCr", YCbCr("UYV", ColorSpace::BT601), Whole(8)},
    {0x02180040, "YCbCr709_8_CbYCr", YCbCr("UYV", ColorSpace::BT709), Whole(8)},
    {0x0218005B, "YCbCr8", YCbCr("YUV", ColorSpace::Full), Whole(8)},
    {0x02180088, "YCbCr422_12p", YCbCr("YUYV", ColorSpace::Full), Dense(12)},
    {0x02180090, "YCbCr601_422_12p", YCbCr("YUYV", ColorSpace::BT601), Dense(12)},
    {0x02180098, "YCbCr709_422_12p", YCbCr("YUYV", ColorSpace::BT709), Dense(12)},
    {0x0218009C, "YCbCr422_12p_CbYCrY", YCbCr("UYVY", ColorSpace::Full), Dense(12)},
    {0x021800A0, "YCbCr601_422_12p_CbYCrY", YCbCr("UYVY", ColorSpace::BT601), Dense(12)},
    {0x021800A4, "YCbCr709_422_12p_CbYCrY", YCbCr("UYVY", ColorSpace::BT709), Dense(12)},
    {0x021800AC, "BiColorRGBG12p", BiColor(Mosaic::RG), Dense(12)},
    {0x021800AE, "BiColorBGRG12p", BiColor(Mosaic::BG), Dense(12)},
    {0x021800B2, "Coord3D_ABC8", Coordinates("ABC"), Whole(8)},
    {0x021800B3, "Coord3D_ABC8_Planar", PlanarCoordinates("ABC"), Whole(8)},
    {0x021800F2, "Coord3D_AC12p", Coordinates("AC"), Dense(12)},
    {0x021800F3, "Coord3D_AC12p_Planar", PlanarCoordinates("AC"), Dense(12)},
    {0x021800F4, "YCbCr2020_8_CbYCr", YCbCr("UYV", ColorSpace::BT2020), Whole(8)},
    {0x02180102, "YCbCr2020_422_12p", YCbCr("YUYV", ColorSpace::BT2020), Dense(12)},
    {0x02180103, "YCbCr2020_422_12p_CbYCrY", YCbCr("UYVY", ColorSpace::BT2020), Dense(12)},
    {0x021E0048, "BGR10p", Colors("BGR"), Dense(10)},
    {0x021E005C, "RGB10p", Colors("RGB"), Dense(10)},
    {0x021E0084, "YCbCr10p_CbYCr", YCbCr("UYV", ColorSpace::Full), Dense(10)},
    {0x021E008A, "YCbCr601_10p_CbYCr", YCbCr("UYV", ColorSpace::BT601), Dense(10)},
    {0x021E0092, "YCbCr709_10p_CbYCr", YCbCr("UYV", ColorSpace::BT709), Dense(10)},
    {0x021E00DB, "Coord3D_ABC10p", Coordinates("ABC"), Dense(10)},
    {0x021E00DC, "Coord3D_ABC10p_Planar", PlanarCoordinates("ABC"), Dense(10)},
    {0x021E00F6, "YCbCr2020_10p_CbYCr", YCbCr("UYV", ColorSpace::BT2020), Dense(10)},
    {0x02200016, "RGBa8", Colors("RGBa"), Whole(8)},
    {0x02200017, "BGRa8", Colors("BGRa"), Whole(8)},
    {0x0220001C, "RGB10V1Packed", Colors("RGB"), Fields(10), Refusal::UnknownBitOrder},
    {0x0220001D, "RGB10p32", Colors("RGB"), Fields(10)},
    {0x02200065, "YCbCr422_10", YCbCr("YUYV", ColorSpace::Full), Whole(10)},
    {0x02200066, "YCbCr422_12", YCbCr("YUYV", ColorSpace::Full), Whole(12)},
    {0x0220008D, "YCbCr601_422_10", YCbCr("YUYV", ColorSpace::BT601), Whole(10)},
    {0x0220008F, "YCbCr601_422_12", YCbCr("YUYV", ColorSpace::BT601), Whole(12)},
    {0x02200095, "YCbCr709_422_10", YCbCr("YUYV", ColorSpace::BT709), Whole(10)},
    {0x02200097, "YCbCr709_422_12", YCbCr("YUYV", ColorSpace::BT709), Whole(12)},
    {0x02200099, "YCbCr422_10_CbYCrY", YCbCr("UYVY", ColorSpace::Full), Whole(10)},
    {0x0220009B, "YCbCr422_12_CbYCrY", YCbCr("UYVY", ColorSpace::Full), Whole(12)},
    {0x0220009D, "YCbCr601_422_10_CbYCrY", YCbCr("UYVY", ColorSpace::BT601), Whole(10)},
    {0x0220009F, "YCbCr601_422_12_CbYCrY", YCbCr("UYVY", ColorSpace::BT601), Whole(12)},
    {0x022000A1, "YCbCr709_422_10_CbYCrY", YCbCr("UYVY", ColorSpace::BT709), Whole(10)},
    {0x022000A3, "YCbCr709_422_12_CbYCrY", YCbCr("UYVY", ColorSpace::BT709), Whole(12)},
    {0x022000A7, "BiColorRGBG10", BiColor(Mosaic::RG), Whole(10)},
    {0x022000A9, "BiColorBGRG10", BiColor(Mosaic::BG), Whole(10)},
    {0x022000AB, "BiColorRGBG12", BiColor(Mosaic::RG), Whole(12)},
    {0x022000AD, "BiColorBGRG12", BiColor(Mosaic::BG), Whole(12)},
    {0x022000BB, "Coord3D_AC16", Coordinates("AC"), Whole(16)},
    {0x022000BC, "Coord3D_AC16_Planar", PlanarCoordinates("AC"), Whole(16)},
    {0x022000FC, "YCbCr2020_422_10", YCbCr("YUYV", ColorSpace::BT2020), Whole(10)},
    {0x022000FD, "YCbCr2020_422_10_CbYCrY", YCbCr("UYVY", ColorSpace::BT2020), Whole(10)},
    {0x02200100, "YCbCr2020_422_12", YCbCr("YUYV", ColorSpace::BT2020), Whole(12)},
    {0x02200101, "YCbCr2020_422_12_CbYCrY", YCbCr("UYVY", ColorSpace::BT2020), Whole(12)},
    {0x02240034, "RGB12V1Packed", Colors("RGB"), Dense(12), Refusal::UnknownBitOrder},
    {0x02240049, "BGR12p", Colors("BGR"), Dense(12)},
    {0x0224005D, "RGB12p", Colors("RGB"), Dense(12)},
    {0x02240086, "YCbCr12p_CbYCr", YCbCr("UYV", ColorSpace::Full), Dense(12)},
    {0x0224008C, "YCbCr601_12p_CbYCr", YCbCr("UYV", ColorSpace::BT601), Dense(12)},
    {0x02240094, "YCbCr709_12p_CbYCr", YCbCr("UYV", ColorSpace::BT709), Dense(12)},
    {0x022400DE, "Coord3D_ABC12p", Coordinates("ABC"), Dense(12)},
    {0x022400DF, "Coord3D_ABC12p_Planar", PlanarCoordinates("ABC"), Dense(12)},
    {0x022400F8, "YCbCr2020_12p_CbYCr", YCbCr("UYV", ColorSpace::BT2020), Dense(12)},
    {0x0228004D, "BGRa10p", Colors("BGRa"), Dense(10)},
    {0x02280060, "RGBa10p", Colors("RGBa"), Dense(10)},
    {0x02300018, "RGB10", Colors("RGB"), Whole(10)},
    {0x02300019, "BGR10", Colors("BGR"), Whole(10)},
    {0x0230001A, "RGB12", Colors("RGB"), Whole(12)},
    {0x0230001B, "BGR12", Colors("BGR"), Whole(12)},
    {0x02300022, "RGB10_Planar", PlanarColors("RGB"), Whole(10)},
    {0x02300023, "RGB12_Planar", PlanarColors("RGB"), Whole(12)},
    {0x02300024, "RGB16_Planar", PlanarColors("RGB"), Whole(16)},
    {0x02300033, "RGB16", Colors("RGB"), Whole(16)},
    {0x0230004A, "BGR14", Colors("BGR"), Whole(14)},
    {0x0230004B, "BGR16", Colors("BGR"), Whole(16)},
    {0x0230004F, "BGRa12p", Colors("BGRa"), Dense(12)},
    {0x0230005E, "RGB14", Colors("RGB"), Whole(14)},
    {0x02300062, "RGBa12p", Colors("RGBa"), Dense(12)},
    {0x02300083, "YCbCr10_CbYCr", YCbCr("UYV", ColorSpace::Full), Whole(10)},
    {0x02300085, "YCbCr12_CbYCr", YCbCr("UYV", ColorSpace::Full), Whole(12)},
    {0x02300089, "YCbCr601_10_CbYCr", YCbCr("UYV", ColorSpace::BT601), Whole(10)},
    {0x0230008B, "YCbCr601_12_CbYCr", YCbCr("UYV", ColorSpace::BT601), Whole(12)},
    {0x02300091, "YCbCr709_10_CbYCr", YCbCr("UYV", ColorSpace::BT709), Whole(10)},
    {0x02300093, "YCbCr709_12_CbYCr", YCbCr("UYV", ColorSpace::BT709), Whole(12)},
    {0x023000B9, "Coord3D_ABC16", Coordinates("ABC"), Whole(16)},
    {0x023000BA, "Coord3D_ABC16_Planar", PlanarCoordinates("ABC"), Whole(16)},
    {0x023000F5, "YCbCr2020_10_CbYCr", YCbCr("UYV", ColorSpace::BT2020), Whole(10)},
    {0x023000F7, "YCbCr2020_12_CbYCr", YCbCr("UYV", ColorSpace::BT2020), Whole(12)},
    {0x0240004C, "BGRa10", Colors("BGRa"), Whole(10)},
    {0x0240004E, "BGRa12", Colors("BGRa"), Whole(12)},
    {0x02400050, "BGRa14", Colors("BGRa"), Whole(14)},
    {0x02400051, "BGRa16", Colors("BGRa"), Whole(16)},
    {0x0240005F, "RGBa10", Colors("RGBa"), Whole(10)},
    {0x02400061, "RGBa12", Colors("RGBa"), Whole(12)},
    {0x02400063, "RGBa14", Colors("RGBa"), Whole(14)},
    {0x02400064, "RGBa16", Colors("RGBa"), Whole(16)},
    {0x024000C2, "Coord3D_AC32f", Coordinates("AC"), Float(32)},
    {0x024000C3, "Coord3D_AC32f_Planar", PlanarCoordinates("AC"), Float(32)},
    {0x026000C0, "Coord3D_ABC32f", Coordinates("ABC"), Float(32)},
    {0x026000C1, "Coord3D_ABC32f_Planar", PlanarCoordinates("ABC"), Float(32)},
    // clang-format on
};

constexpr bool IsSorted()
{
    return std::is_sorted(std::begin(formats), std::end(formats), [](const PixelFormat& a, const PixelFormat& b) {
        return a.number < b.number;
    });
}
static_assert(IsSorted(), "the search by number halves the table");

constexpr std::string_view gvspPrefix = "GVSP_";

const char* WhyNoPicture(const PixelFormat& format)
{
    switch (format.content.kind)
    {
    case KIMG_KIND_SPARSE_FILTER:
        return "How to compute colours from this sparse filter is known only to the maker of the sensor; unpack the "
               "samples instead.";
    case KIMG_KIND_COORDINATE:
        if (format.NumComponents() == 1) return nullptr;
        return "Coordinates of several axes are no picture; unpack them instead.";
    default:
        return nullptr;
    }
}

} // namespace

unsigned PixelFormat::NumComponents() const noexcept
{
    return content.kind == KIMG_KIND_YCBCR ? 3 : static_cast<unsigned>(content.order.size());
}

unsigned PixelFormat::NumPlanes() const noexcept
{
    switch (content.arrangement)
    {
    case KIMG_ARRANGEMENT_PLANAR:
        return NumComponents();
    case KIMG_ARRANGEMENT_SEMIPLANAR:
        return 2;
    default:
        return 1;
    }
}

unsigned PixelFormat::GroupWidth() const noexcept
{
    if (content.arrangement == KIMG_ARRANGEMENT_SEMIPLANAR || content.kind == KIMG_KIND_BICOLOR) return 2;
    if (content.kind != KIMG_KIND_YCBCR) return 1;
    return static_cast<unsigned>(std::count(content.order.begin(), content.order.end(), 'Y'));
}

unsigned PixelFormat::BitsInMemory() const noexcept
{
    switch (samples.packing)
    {
    case KIMG_PACKING_DENSE:
        return samples.bits;
    case KIMG_PACKING_GVSP:
        return 12;
    default:
        return samples.bits <= 8 ? 8 : samples.bits <= 16 ? 16 : samples.bits <= 32 ? 32 : 64;
    }
}

unsigned PixelFormat::BitsPerPixel() const noexcept
{
    if (samples.packing == KIMG_PACKING_PIXEL_FIELDS) return samples.bits == 10 ? 32 : 16;
    if (content.arrangement == KIMG_ARRANGEMENT_SEMIPLANAR)
        return BitsInMemory() + BitsInMemory() / content.groupHeight;
    const unsigned group = content.kind == KIMG_KIND_BICOLOR ? 1 : GroupWidth();
    return static_cast<unsigned>(content.order.size()) * BitsInMemory() / group;
}

const char* PixelFormat::WhyNot(uint32_t operation) const noexcept
{
    if (refusal == Refusal::WrongSize)
        return "The number of this withdrawn format states a size that its data do not have.";
    if (operation == KIMG_OPERATION_LAYOUT) return nullptr;
    if (refusal == Refusal::UnknownBitOrder)
        return "The position of the low bits in this GigE Vision 1 format is not confirmed by any data.";
    if (operation == KIMG_OPERATION_UNPACK_FLOAT) return nullptr;
    if (samples.bits > 16)
        return "The samples have more than 16 bits and no fixed range; unpack them to floats instead.";
    return operation == KIMG_OPERATION_CONVERT ? WhyNoPicture(*this) : nullptr;
}

std::span<const PixelFormat> PixelFormats() noexcept
{
    return formats;
}

const PixelFormat* FindPixelFormat(uint32_t number) noexcept
{
    const auto* const found = std::lower_bound(
        std::begin(formats), std::end(formats), number,
        [](const PixelFormat& format, uint32_t wanted) { return format.number < wanted; });
    return found != std::end(formats) && found->number == number ? found : nullptr;
}

const PixelFormat* FindPixelFormat(std::string_view name) noexcept
{
    if (name.starts_with(gvspPrefix)) name.remove_prefix(gvspPrefix.size());
    const auto* const found = std::find_if(
        std::begin(formats), std::end(formats), [name](const PixelFormat& format) { return format.name == name; });
    return found == std::end(formats) ? nullptr : found;
}

const PixelFormat& RequirePixelFormat(uint32_t number)
{
    if (const PixelFormat* format = FindPixelFormat(number)) return *format;
    char text[64];
    std::snprintf(text, sizeof text, "The pixel format 0x%08X is not known.", static_cast<unsigned>(number));
    throw Failure(KIMG_RETURN_CODE_NOT_FOUND, text);
}

void RequireOperation(const PixelFormat& format, uint32_t operation)
{
    const char* const reason = format.WhyNot(operation);
    if (reason) throw Failure(KIMG_RETURN_CODE_NOT_IMPLEMENTED, std::string(format.name) + ": " + reason);
}

} // namespace koro::image
