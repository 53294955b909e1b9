/*
 * zvr_koro_image: pictures of machine-vision cameras, from the bytes of a frame to pixels that a program can use.
 *
 * The library knows the pixel formats of the GenICam Pixel Format Naming Convention (PFNC) by their 32-bit numbers. It
 * describes them, unpacks samples, converts pictures to common formats and measures them. It opens no device, starts
 * no thread and reads no file or environment variable. docs/image.md describes the calculations.
 *
 * These conventions hold for every function:
 *
 *  1. KIMG_<Family>_<Operation> takes inputs first, then outputs, and returns a KIMG_ReturnCode: 0 for success.
 *     KIMG_Library_GetLastError returns the text of a failure to the thread that had it. A function that fails writes
 *     nothing.
 *  2. Any thread may call any function at any time. The functions keep no reference to memory of the caller.
 *  3. Results lie in the caller's memory and nothing has to be freed. An output of variable length is a buffer and a
 *     pointer to its size, such as `name` and `nameSize`. The size holds the capacity in bytes before the call and the
 *     bytes used after a success. A null buffer asks for the size that is needed. Sizes of texts count the terminating
 *     zero. A buffer that is too small is left as it was, and so is its size.
 *  4. For a null size pointer, and for a null output of fixed length, a function returns
 *     KIMG_RETURN_CODE_INVALID_ARGUMENT.
 *  5. `data` are the bytes of a frame and `dataSize` is their number. KIMG_Image_GetSize reports how many are needed;
 *     no more are read. For a frame that is shorter a function returns KIMG_RETURN_CODE_NO_DATA. `data` may be null
 *     when only the size of the output is asked for.
 *  6. `region` selects a part of the picture, in pixels; null means the whole picture. For a region that is empty or
 *     reaches over an edge a function returns KIMG_RETURN_CODE_OUT_OF_RANGE.
 *  7. `outputStride` is the distance in bytes from one line of the output to the next; 0 means lines without padding.
 *     The size of an output is (lines - 1) * stride + bytes of a line. Bytes between the lines are not written. Samples
 *     of more than 8 bits are written in the byte order of the machine.
 *  8. Input and output must not overlap, except in functions that change a picture in place.
 *  9. Reserved bytes of records that are passed in must be zero.
 */
#ifndef KORO_IMAGE_H
#define KORO_IMAGE_H

#include <stddef.h>
#include <stdint.h>

/* Everything that is not declared with this is hidden in the library. */
#if defined(__GNUC__)
#define KIMG_API __attribute__((visibility("default")))
#else
#define KIMG_API
#endif

#if defined(__cplusplus)
#define KIMG_CHECK_SIZE(record, size) static_assert(sizeof(record) == (size), "the layout is fixed")
#else
#define KIMG_CHECK_SIZE(record, size) _Static_assert(sizeof(record) == (size), "the layout is fixed")
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* A signed 32-bit integer and not the enumeration, so that its width is the same for every compiler. */
typedef int32_t KIMG_ReturnCode;

/* The numbers are those of KORO_ReturnCodes, as far as they have a use here; they never change. */
enum KIMG_ReturnCodes
{
    /* done; the last error is not touched */
    KIMG_RETURN_CODE_SUCCESS = 0,
    /* any failure without a separate code */
    KIMG_RETURN_CODE_ERROR = 1,
    /* there is not enough memory for the lines that are being processed */
    KIMG_RETURN_CODE_BAD_ALLOC = 5,
    /* the caller's buffer is too small; a null buffer asks for the size */
    KIMG_RETURN_CODE_BUFFER_TOO_SMALL = 6,
    /* a null pointer, or a value that makes no sense */
    KIMG_RETURN_CODE_INVALID_ARGUMENT = 8,
    /* no pixel format has this name or number */
    KIMG_RETURN_CODE_NOT_FOUND = 11,
    /* an index beyond the list, a size beyond its limit, or a region outside of the picture */
    KIMG_RETURN_CODE_OUT_OF_RANGE = 12,
    /* there is no reason to report, no finite sample, or no light of some colour */
    KIMG_RETURN_CODE_NOT_AVAILABLE = 14,
    /* the format is known, but not for this operation; the text gives the reason */
    KIMG_RETURN_CODE_NOT_IMPLEMENTED = 15,
    /* the frame is shorter than its picture */
    KIMG_RETURN_CODE_NO_DATA = 18
};

/* What a format describes: KIMG_PIXEL_FORMAT_INFO::kind. */
enum KIMG_Kinds
{
    KIMG_KIND_MONO = 1,          /* brightness, or one colour (R8, G8, B8) */
    KIMG_KIND_BAYER = 2,         /* one colour for each pixel, in a mosaic of 2 x 2 */
    KIMG_KIND_SPARSE_FILTER = 3, /* white pixels with few coloured ones between them (SCF1...) */
    KIMG_KIND_RGB = 4,           /* red, green and blue, with or without alpha */
    KIMG_KIND_YCBCR = 5,         /* brightness and two colour differences */
    KIMG_KIND_BICOLOR = 6,       /* lines of a two-line sensor: each pixel has green and either red or blue, in turns */
    KIMG_KIND_COORDINATE = 7,    /* coordinates of points in space */
    KIMG_KIND_CONFIDENCE = 8,    /* how far a point can be trusted */
    KIMG_KIND_DATA = 9           /* numbers whose meaning the convention leaves open */
};

/* How samples lie in memory: KIMG_PIXEL_FORMAT_INFO::packing. */
enum KIMG_Packings
{
    KIMG_PACKING_WHOLE_BYTES = 1, /* 1, 2, 4 or 8 bytes a sample; values in the low bits */
    KIMG_PACKING_DENSE = 2,       /* suffix p: no gaps, filled from the least significant bit */
    KIMG_PACKING_GVSP = 3,        /* suffix Packed: two samples in three bytes, low bits in the middle byte */
    KIMG_PACKING_PIXEL_FIELDS = 4 /* all samples of a pixel in one number of 16 or 32 bits */
};

/* What a sample is: KIMG_PIXEL_FORMAT_INFO::sampleType. */
enum KIMG_SampleTypes
{
    KIMG_SAMPLE_TYPE_UNSIGNED = 1,
    KIMG_SAMPLE_TYPE_SIGNED = 2, /* two's complement */
    KIMG_SAMPLE_TYPE_FLOAT = 3   /* IEEE 754 */
};

/* Where the components of a pixel lie: KIMG_PIXEL_FORMAT_INFO::arrangement. */
enum KIMG_Arrangements
{
    KIMG_ARRANGEMENT_INTERLEAVED = 1, /* side by side in one plane */
    KIMG_ARRANGEMENT_PLANAR = 2,      /* one plane for each component, one after the other */
    KIMG_ARRANGEMENT_SEMIPLANAR = 3   /* a plane of brightness, then a plane of both colour differences */
};

/* Colours of the first two pixels of the first line: KIMG_PIXEL_FORMAT_INFO::mosaic. */
enum KIMG_Mosaics
{
    KIMG_MOSAIC_NONE = 0,
    KIMG_MOSAIC_GR = 1,
    KIMG_MOSAIC_RG = 2,
    KIMG_MOSAIC_GB = 3,
    KIMG_MOSAIC_BG = 4
};

/* How brightness and colour differences become colours: KIMG_PIXEL_FORMAT_INFO::colorSpace. */
enum KIMG_ColorSpaces
{
    KIMG_COLOR_SPACE_NONE = 0,
    KIMG_COLOR_SPACE_FULL = 1,  /* YUV and YCbCr without a number: BT.601 weights, full range */
    KIMG_COLOR_SPACE_BT601 = 2, /* BT.601, BT.709 and BT.2020 with the limited range 16 to 235 */
    KIMG_COLOR_SPACE_BT709 = 3,
    KIMG_COLOR_SPACE_BT2020 = 4
};

/* Bits of KIMG_PIXEL_FORMAT_INFO::operations. */
enum KIMG_Operations
{
    KIMG_OPERATION_LAYOUT = 1,       /* KIMG_Image_GetSize, KIMG_Image_GetPlane */
    KIMG_OPERATION_UNPACK = 2,       /* KIMG_Image_Unpack8 and KIMG_Image_Unpack16 */
    KIMG_OPERATION_UNPACK_FLOAT = 4, /* KIMG_Image_UnpackFloat */
    KIMG_OPERATION_CONVERT = 8       /* KIMG_Image_Convert and KIMG_Image_Downscale */
};

/* How missing colours of a Bayer mosaic are found. */
enum KIMG_Demosaics
{
    KIMG_DEMOSAIC_BILINEAR = 1,  /* mean of the nearest neighbours */
    KIMG_DEMOSAIC_EDGE_AWARE = 2 /* along the direction of the smaller change; sharper, fewer coloured edges */
};

/* Properties of a pixel format. */
typedef struct KIMG_PIXEL_FORMAT_INFO
{
    uint32_t pixelFormat;   /* the number of the convention */
    int32_t kind;           /* KIMG_KIND_... */
    int32_t packing;        /* KIMG_PACKING_... */
    int32_t sampleType;     /* KIMG_SAMPLE_TYPE_... */
    int32_t arrangement;    /* KIMG_ARRANGEMENT_... */
    int32_t mosaic;         /* KIMG_MOSAIC_...; of BiColor RG or BG, after the colour that the first pixel has */
    int32_t colorSpace;     /* KIMG_COLOR_SPACE_... */
    uint32_t bitsPerSample; /* significant bits; the largest where they differ (6 of RGB565p) */
    uint32_t bitsPerPixel;  /* bits of memory for one pixel, on average over a group, without padding of lines */
    uint32_t numComponents; /* 1 to 4: what unpacking writes for each pixel */
    uint32_t numPlanes;     /* 1 to 3 */
    uint32_t groupWidth;    /* pixels of a line that share samples of colour: 1, 2 or 4 */
    uint32_t groupHeight;   /* lines that share them: 1 or 2 */
    uint32_t operations;    /* sum of KIMG_OPERATION_... that are supported */
    uint8_t reserved[8];    /* zero */
} KIMG_PIXEL_FORMAT_INFO;
KIMG_CHECK_SIZE(KIMG_PIXEL_FORMAT_INFO, 64);

/* A picture as a producer describes it. A line begins on a whole byte. */
typedef struct KIMG_IMAGE
{
    uint32_t pixelFormat; /* the number of the convention */
    uint8_t bigEndian;    /* 1 where samples of whole bytes have their high byte first; else 0 */
    uint8_t reserved[3];  /* zero */
    uint64_t width;       /* pixels, 1 to 1,000,000 */
    uint64_t height;      /* lines, 1 to 1,000,000 */
    uint64_t xPadding;    /* bytes after each line of each plane, at most 1,000,000 */
    uint64_t imageOffset; /* bytes before the first line, at most 2^40 */
} KIMG_IMAGE;
KIMG_CHECK_SIZE(KIMG_IMAGE, 40);

/* One plane of a picture. */
typedef struct KIMG_PLANE
{
    uint64_t offset;    /* bytes from the start of the frame to the first line */
    uint64_t lineBytes; /* bytes of a line that hold pixels */
    uint64_t stride;    /* bytes from one line to the next */
    uint64_t numLines;
} KIMG_PLANE;
KIMG_CHECK_SIZE(KIMG_PLANE, 32);

/* A part of a picture, in pixels. */
typedef struct KIMG_REGION
{
    uint64_t x;
    uint64_t y;
    uint64_t width;
    uint64_t height;
} KIMG_REGION;
KIMG_CHECK_SIZE(KIMG_REGION, 32);

/* Statistics of the samples of one component. */
typedef struct KIMG_STATISTICS
{
    double minimum;
    double maximum;
    double mean;
    uint64_t numSamples;   /* samples that are counted; of floating-point samples only the finite ones */
    uint64_t numSaturated; /* samples with the largest value of their bits; 0 for floating-point samples */
} KIMG_STATISTICS;
KIMG_CHECK_SIZE(KIMG_STATISTICS, 40);

/**
 * Reports the version of the library.
 * @param[out] major, minor, subminor the numbers of the file's name
 */
KIMG_API KIMG_ReturnCode KIMG_Library_GetVersion(uint32_t* major, uint32_t* minor, uint32_t* subminor);

/**
 * Reports the most recent failure of the calling thread. Nothing clears the record, neither reading it nor a later
 * success. A failure of this function replaces the record.
 * @param[out] lastErrorCode                                  code of the failure, 0 if there was none on this thread
 * @param[out] lastErrorDescription, lastErrorDescriptionSize its text
 */
KIMG_API KIMG_ReturnCode
KIMG_Library_GetLastError(KIMG_ReturnCode* lastErrorCode, char* lastErrorDescription, size_t* lastErrorDescriptionSize);

/**
 * Reports which version of the inner loops the library uses on this processor: "AVX2", "SSE4", "NEON" or "plain". All
 * give the same results; the name explains differences in speed.
 */
KIMG_API KIMG_ReturnCode KIMG_Library_GetTarget(char* name, size_t* nameSize);

/** Reports the number of pixel formats in the table. */
KIMG_API KIMG_ReturnCode KIMG_PixelFormat_GetNum(size_t* numPixelFormats);

/**
 * Reports one pixel format of the table. The table is sorted by number.
 * @param[in]  index       0 to the number of formats - 1
 * @param[out] pixelFormat the number of the convention
 */
KIMG_API KIMG_ReturnCode KIMG_PixelFormat_GetByIndex(size_t index, uint32_t* pixelFormat);

/**
 * Finds a pixel format by its name in the convention, with or without the prefix "GVSP_". The case of letters counts.
 * @param[in]  name        zero-terminated
 * @param[out] pixelFormat the number of the convention
 * @return KIMG_RETURN_CODE_NOT_FOUND for a name that the table does not have
 */
KIMG_API KIMG_ReturnCode KIMG_PixelFormat_FindByName(const char* name, uint32_t* pixelFormat);

/**
 * Reports the name of a pixel format, without the prefix "GVSP_".
 * @return KIMG_RETURN_CODE_NOT_FOUND for a number that the table does not have
 */
KIMG_API KIMG_ReturnCode KIMG_PixelFormat_GetName(uint32_t pixelFormat, char* name, size_t* nameSize);

/**
 * Reports the properties of a pixel format.
 * @return KIMG_RETURN_CODE_NOT_FOUND for a number that the table does not have
 */
KIMG_API KIMG_ReturnCode KIMG_PixelFormat_GetInfo(uint32_t pixelFormat, KIMG_PIXEL_FORMAT_INFO* info);

/**
 * Reports why an operation is not supported for a pixel format: one sentence in English.
 * @param[in]  operation            one KIMG_OPERATION_...
 * @param[out] refusal, refusalSize the reason
 * @return KIMG_RETURN_CODE_NOT_AVAILABLE if the operation is supported
 */
KIMG_API KIMG_ReturnCode
KIMG_PixelFormat_GetRefusal(uint32_t pixelFormat, uint32_t operation, char* refusal, size_t* refusalSize);

/**
 * Reports the number of bytes from the start of the frame to the last pixel, including the offset of the image. The
 * padding after the last line may be absent.
 * @return KIMG_RETURN_CODE_OUT_OF_RANGE for a size beyond the limits of KIMG_IMAGE
 */
KIMG_API KIMG_ReturnCode KIMG_Image_GetSize(const KIMG_IMAGE* image, uint64_t* imageSize);

/**
 * Reports where one plane of a picture lies.
 * @param[in] planeIndex 0 to KIMG_PIXEL_FORMAT_INFO::numPlanes - 1
 */
KIMG_API KIMG_ReturnCode KIMG_Image_GetPlane(const KIMG_IMAGE* image, size_t planeIndex, KIMG_PLANE* plane);

/**
 * Unpacks samples to 8 bits over the full range: wider samples keep their upper 8 bits, narrower ones are filled up by
 * repeating their bits. A pixel has KIMG_PIXEL_FORMAT_INFO::numComponents samples side by side, always in this order:
 * red, green, blue, alpha; Y, Cb, Cr; axes as the format names them; for BiColor red or blue, then green. Colour
 * differences that several pixels share are repeated. Half of their range is added to signed samples. A value beyond
 * the bits of its format counts as the largest.
 */
KIMG_API KIMG_ReturnCode KIMG_Image_Unpack8(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, size_t outputStride,
    uint8_t* output, size_t* outputSize);

/**
 * Unpacks to 16 bits, in the same order. Values stay as they were sent: Mono12 yields 0 to 4095. Nothing is scaled or
 * limited; half of their range is added to signed samples.
 */
KIMG_API KIMG_ReturnCode KIMG_Image_Unpack16(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, size_t outputStride,
    uint16_t* output, size_t* outputSize);

/** Unpacks to floats, in the same order, every type of sample. Signed samples keep their sign. */
KIMG_API KIMG_ReturnCode KIMG_Image_UnpackFloat(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, size_t outputStride,
    float* output, size_t* outputSize);

/**
 * Converts a picture. Samples are first scaled to the full range of the target: to 8 bits as KIMG_Image_Unpack8 does,
 * to 16 bits by repeating their high bits below themselves. Colours are computed from the scaled samples. The pixels of
 * a region are the same as in the whole picture. The brightness of a colour is 0.299 red + 0.587 green + 0.114 blue;
 * the brightness of YCbCr is Y.
 * @param[in] demosaic     KIMG_DEMOSAIC_..., also for formats that have no mosaic
 * @param[in] targetFormat the number of Mono8, Mono16, RGB8, BGR8, RGBa8, BGRa8, RGB16, BGR16, RGBa16 or BGRa16
 * @return KIMG_RETURN_CODE_NOT_IMPLEMENTED for another target, and for a format that is no picture
 */
KIMG_API KIMG_ReturnCode KIMG_Image_Convert(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, int32_t demosaic,
    uint32_t targetFormat, size_t outputStride, void* output, size_t* outputSize);

/**
 * Makes a small picture for a preview: each pixel of the output is the mean of the pixels that it covers, rounded half
 * up. Bayer mosaics are demosaiced bilinearly first.
 * @param[in] targetFormat              the number of Mono8, RGB8, BGR8, RGBa8 or BGRa8
 * @param[in] outputWidth, outputHeight pixels, 1 to the size of the region
 * @return KIMG_RETURN_CODE_OUT_OF_RANGE for an output that is larger than the region
 */
KIMG_API KIMG_ReturnCode KIMG_Image_Downscale(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, uint32_t targetFormat,
    uint64_t outputWidth, uint64_t outputHeight, size_t outputStride, void* output, size_t* outputSize);

/**
 * Counts the samples of a component by value. Half of their range is added to signed samples; a value beyond the bits
 * of its format counts as the largest.
 * @param[in]  componentIndex           0 to KIMG_PIXEL_FORMAT_INFO::numComponents - 1, in the order that
 *                                      KIMG_Image_Unpack8 writes
 * @param[out] histogram, histogramSize a count for each of the 2^bitsPerSample values; the size is in bytes
 * @return KIMG_RETURN_CODE_NOT_IMPLEMENTED for samples of more than 16 bits
 */
KIMG_API KIMG_ReturnCode KIMG_Image_GetHistogram(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, size_t componentIndex,
    uint64_t* histogram, size_t* histogramSize);

/**
 * Measures the samples of a component, as KIMG_Image_UnpackFloat returns them, for every type of sample. Integers of up
 * to 16 bits that lie beyond the bits of their format count as the largest value.
 * @return KIMG_RETURN_CODE_NOT_AVAILABLE if no sample of the region is a finite number
 */
KIMG_API KIMG_ReturnCode KIMG_Image_GetStatistics(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, size_t componentIndex,
    KIMG_STATISTICS* statistics);

/*
 * The next three take unsigned samples of 8 to 16 bits in whole bytes, of the kinds mono, Bayer and RGB. For other
 * formats they return KIMG_RETURN_CODE_NOT_IMPLEMENTED.
 */

/**
 * Estimates the factors that make the mean colour of the region grey. The factor of green is 1. A sample beyond the
 * bits of its format counts as the largest.
 * @return KIMG_RETURN_CODE_NOT_AVAILABLE for a region without red, green or blue light,
 *         KIMG_RETURN_CODE_NOT_IMPLEMENTED for a picture without colours
 */
KIMG_API KIMG_ReturnCode KIMG_Image_EstimateGains(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, double* redGain,
    double* greenGain, double* blueGain);

/**
 * Multiplies the colours of a picture in place, before or after demosaicing. Products are rounded half up and limited
 * to the bits of the format. Alpha stays as it is. A mono picture is multiplied by the factor of green.
 * @param[in,out] data                         the frame
 * @param[in]     redGain, greenGain, blueGain 0 to 1000
 */
KIMG_API KIMG_ReturnCode KIMG_Image_ApplyGains(
    const KIMG_IMAGE* image, void* data, size_t dataSize, const KIMG_REGION* region, double redGain, double greenGain,
    double blueGain);

/**
 * Replaces each sample of a picture in place by its entry in a table. Alpha stays as it is. A sample beyond the bits of
 * its format counts as the largest.
 * @param[in,out] data             the frame
 * @param[in]     table, tableSize 2^bitsPerSample entries, each within these bits; the size is in bytes
 */
KIMG_API KIMG_ReturnCode KIMG_Image_ApplyTable(
    const KIMG_IMAGE* image, void* data, size_t dataSize, const KIMG_REGION* region, const uint16_t* table,
    size_t tableSize);

/**
 * Fills a table for KIMG_Image_ApplyTable: largest * (value / largest) ^ (1 / gamma), rounded half up.
 * @param[in]  gamma            0.01 to 100; above 1 dark places become brighter
 * @param[in]  bits             of a sample, 8 to 16
 * @param[out] table, tableSize 2^bits entries; the size is in bytes
 */
KIMG_API KIMG_ReturnCode KIMG_Table_FillGamma(double gamma, uint32_t bits, uint16_t* table, size_t* tableSize);

#ifdef __cplusplus
}
#endif

#endif
