#pragma once

#include <cstdint>

/// What a file holds.
enum PLKFileType : int {
    PLK_FILE_UNKNOWN = 0,
    PLK_FILE_XRV = 1,
    PLK_FILE_JPEG2000 = 2,
};

/// Type of the cells of a dataset. A band of n bits is held in the smallest type that takes it.
enum PLKCellType : int {
    PLKCT_UINT8 = 0,
    PLKCT_UINT16 = 1,
    PLKCT_UINT32 = 2,
    PLKCT_UINT64 = 3,
    PLKCT_INT8 = 4,
    PLKCT_INT16 = 5,
    PLKCT_INT32 = 6,
    PLKCT_INT64 = 7,
    PLKCT_FLOAT = 8,
    PLKCT_DOUBLE = 9,
};

/// Unit of the cell increments.
enum PLKCellSizeUnits : int {
    PLK_UNITS_INVALID = 0,
    PLK_UNITS_METERS = 1,
    PLK_UNITS_DEGREES = 2,
    PLK_UNITS_FEET = 3,
};

/// Meaning of the bands. Luma-chroma files that the SDK converts for display are reported as sRGB.
enum PLKColorSpace : int {
    PLK_COLORSPACE_NONE = 0,
    PLK_COLORSPACE_GREYSCALE = 1,
    PLK_COLORSPACE_YUV = 2,
    PLK_COLORSPACE_MULTIBAND = 3,
    PLK_COLORSPACE_SRGB = 4,
    PLK_COLORSPACE_YCBCR = 5,
};

/// Outcome of reading lines. Cancelled is no failure: a newer view, a cancel or a close came in between.
enum PLKReadStatus : int {
    PLK_READ_SUCCESS = 0,
    PLK_READ_FAILED = 1,
    PLK_READ_CANCELLED = 2,
};

/// How cells become pixels where the two grids differ.
enum PLKResampleMethod : int {
    PLK_RESAMPLE_NEAREST = 0,
    PLK_RESAMPLE_BILINEAR = 1,
};

/// One band of a dataset.
struct PLKBandInfo
{
    std::uint8_t nBits; ///< bits per cell, 1 to 38
    bool bSigned;       ///< cells are signed
    /// "Red", "Green", "Blue", "Greyscale", "AllOpacity" or "Band #n" (n from 1); an XRV file may have others, in
    /// UTF-8. Never null.
    const char *szDesc;
};

/// Authoring texts of an XRV file. Every text may be null.
struct PLKFileMetaData
{
    const wchar_t *sClassification;
    const wchar_t *sAcquisitionDate;
    const wchar_t *sAcquisitionSensorName;
    const wchar_t *sCompressionSoftware;
    const wchar_t *sAuthor;
    const wchar_t *sCopyright;
    const wchar_t *sCompany;
    const wchar_t *sEmail;
    const wchar_t *sAddress;
    const wchar_t *sTelephone;
};

/// What is known of an open file. Owned by the view; valid until the view is closed.
struct PLKFileInfo
{
    std::uint32_t nSizeX;                 ///< width in cells
    std::uint32_t nSizeY;                 ///< height in cells
    std::uint16_t nBands;                 ///< number of bands
    std::uint16_t nCompressionRate;       ///< target rate n of n:1; 1 for lossless XRV, 0 where it is not told
    PLKCellSizeUnits eCellSizeUnits;      ///< unit of the cell increments and of the origin
    double fCellIncrementX;               ///< world units per cell along a row
    double fCellIncrementY;               ///< world units per cell down a column; negative for north-up images
    double fOriginX;                      ///< world x of the top-left corner of cell (0, 0)
    double fOriginY;                      ///< world y of the top-left corner of cell (0, 0)
    const char *szDatum;                  ///< datum name, "RAW" without geo-referencing; never null
    const char *szProjection;             ///< projection name, "RAW" without geo-referencing; never null
    double fCWRotationDegrees;            ///< clockwise rotation of the rows, degrees
    PLKColorSpace eColorSpace;            ///< meaning of the bands
    PLKCellType eCellType;                ///< type that holds every band
    const PLKBandInfo *pBands;            ///< nBands records
    std::uint8_t nFormatVersion;          ///< version of the file format, the major one of XRV; 1 for JPEG 2000
    const char *szCompressionDate;        ///< empty where unknown; never null
    float fActualCompressionRate;         ///< n of n:1, bytes of all cells against bytes of the file; 0 where unknown
    const PLKFileMetaData *pFileMetaData; ///< authoring texts, null where the file has none
};

/// Statistics of one band.
struct PLKBandStatistics
{
    float fMode;
    float fMin;
    float fMax;
    float fMean;
    float fMedian;
    float fStandardDev;
    std::uint32_t nHistBucketCount; ///< number of entries of pHistogram
    /// Bands of up to 8 bits: 256 buckets, one for each value from 0 or, signed, from -128. Deeper bands: equal buckets
    /// from fMin to fMax, one for each value where these are no more than 65536 (fewer with more than 64 bands).
    std::uint64_t *pHistogram;
};

/// Statistics of a file; released with PLKFreeStatistics().
struct PLKFileStatistics
{
    PLKBandStatistics *pBandStats; ///< nBands records
    std::uint32_t nBands;
};

/// What is known of the statistics of an open file.
enum PLKStatisticsState : int {
    PLK_STATISTICS_UNKNOWN = 0,   ///< nobody has asked yet
    PLK_STATISTICS_ESTIMATED = 1, ///< what was given is that of some of the cells
    PLK_STATISTICS_COUNTING = 2,  ///< the same, and all cells are being counted
    PLK_STATISTICS_EXACT = 3,     ///< of every cell
};

/// Rational polynomial coefficients: 92 doubles in the order of the RPC00B tagged record extension
/// (STDI-0002 volume 1, appendix E). Released with PLKFreeRPCData().
struct PLKRPCData
{
    double fErrorBias;       ///< metres
    double fErrorRandom;     ///< metres
    double fLineOffset;      ///< cells
    double fSampleOffset;    ///< cells
    double fLatitudeOffset;  ///< degrees
    double fLongitudeOffset; ///< degrees
    double fHeightOffset;    ///< metres
    double fLineScale;       ///< cells
    double fSampleScale;     ///< cells
    double fLatitudeScale;   ///< degrees
    double fLongitudeScale;  ///< degrees
    double fHeightScale;     ///< metres
    double fLineNumerator[20];
    double fLineDenominator[20];
    double fSampleNumerator[20];
    double fSampleDenominator[20];
};

/// A view as it was set, with its progress; handed to the refresh callback.
struct PLKSetViewInfo
{
    std::uint32_t nSizeX; ///< width in pixels
    std::uint32_t nSizeY; ///< height in pixels
    double fTopLeftX;     ///< world rectangle
    double fTopLeftY;
    double fBottomRightX;
    double fBottomRightY;
    std::uint32_t nBands;           ///< number of bands set
    std::uint64_t nGeneration;      ///< number of the view, growing with every SetView
    std::uint64_t nBlocksInView;    ///< see CView::GetAllBlocksInView()
    std::uint64_t nBlocksAvailable; ///< of these, decoded so far
};

/// Place of an XML box in a file.
struct PLKXMLBox
{
    std::uint32_t nType;          ///< box type, four characters, first one in the highest byte
    std::uint64_t nContentOffset; ///< from the start of the file, in bytes
    std::uint64_t nContentLength; ///< in bytes
};
