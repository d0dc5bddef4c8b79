#pragma once

#include "plkconfig.h"
#include "plkerror.h"
#include "plkexport.h"
#include "plkopencontrol.h"
#include "plkstream.h"
#include "plkstring.h"
#include "plktypes.h"
#include "plkviewmetadata.h"

#include <memory>
#include <string>

namespace xrv {
class OpenFile; // private to the library
}

namespace PLK::SDK {

/// Makes files and holds the configuration that they share.
class PLK_EXPORT CFileFactory
{
public:
    CFileFactory();
    ~CFileFactory();
    CConfig &Config() { return config; }

private:
    CConfig config;
};

/// Access to the one factory of the process.
class PLK_EXPORT CFilesHelper
{
public:
    CFileFactory *Get();
};

/// An open file.
class PLK_EXPORT CFileBase
{
public:
    virtual ~CFileBase();
    static CFilesHelper &sFilesHelper();
    /// Name as it was opened, UTF-8.
    virtual const char *GetName() const = 0;
    virtual PLKFileType GetType() const = 0;
    /// Read over XRVP or XRVPS.
    virtual bool IsRemote() const = 0;
};

/// Opens a file and answers questions about it. All operations but Close() may be called from any thread; those that
/// return pointers name the owner.
class PLK_EXPORT CFileClient
{
public:
    CFileClient();
    virtual ~CFileClient();
    CFileClient(const CFileClient &) = delete;
    CFileClient &operator=(const CFileClient &) = delete;

    /// The open file, null while nothing is open. Owned by this object.
    const CFileBase *GetFile() const;
    bool IsOpen() const { return GetFile() != nullptr; }
    /// UTF-8 name that the file was opened with, empty while nothing is open.
    std::string GetFileName() const;
    PLKFileType GetFileType() const;
    /// Null while nothing is open. Owned by this object, valid until Close().
    const PLKFileInfo *GetFileInfo() const;
    /// Code of the coordinate reference system in the EPSG register; 0 where there is none or it is unknown.
    int GetEPSGCode() const;
    /// World coordinates of the top-left corner of a cell (dataset coordinates in cells, may lie outside). Rotation is
    /// not applied: the world axes of a rotated image are its own.
    CError ConvertDatasetToWorld(double datasetX, double datasetY, double *worldX, double *worldY) const;
    CError ConvertWorldToDataset(double worldX, double worldY, double *datasetX, double *datasetY) const;
    /// The file's affine transformation as six numbers: x = t[0] + t[1] column + t[2] row, y = t[3] + t[4] column +
    /// t[5] row, of the corners of cells; rotation and shear included.
    CError GetWorldTransform(double transform[6]) const;
    /// First XML box (\a previous null) or the one after \a previous; null at the end. Boxes come in file order, those
    /// in superboxes included. Owned by this object.
    const PLKXMLBox *GetXMLBox(const PLKXMLBox *previous) const;
    /// The file's bytes. Owned by this object, null while nothing is open. Not for use from several threads at once.
    CIOStream *GetStream() const;
    /// Statistics of every band, opacity included, with histograms, kept with the file. Exact ones of every cell at
    /// once where an XRV file carries them (those of the image that was compressed), where they have been counted and
    /// where a local file has no more than four million cells of all bands; else an estimate from windows of full
    /// resolution, up to a million cells of each band: GetStatisticsState() tells. \a statistics is set to a record to
    /// be freed with PLKFreeStatistics().
    CError GetClientStatistics(PLKFileStatistics **statistics);
    /// Whether GetClientStatistics() gives exact figures; unknown before it was called.
    PLKStatisticsState GetStatisticsState() const;
    /// Counts every cell of the file in the background, on all cores and with little memory; a stream is transferred as
    /// a whole for it. Does nothing where that is done or under way. Closing the file ends it.
    CError StartCountingStatistics();
    /// Share of the cells that has been counted, 0 to 100.
    int GetStatisticsPercent() const;
    /// Gives the count up; returns at once. What was counted is lost.
    void CancelCountingStatistics();
    /// Waits for the end of the count. Success where the statistics are exact; else how the last count ended:
    /// PLK_ERR_CANCELLED when it was given up or never begun, else errors of decoding.
    CError WaitForStatistics();
    /// What is wrong with the open file, as far as it has been read: PLK_ERR_CONNECTION_LOST or PLK_ERR_FILE_CHANGED
    /// for streams that give nothing more until they are reconnected or opened anew, PLK_ERR_MALFORMED with what was
    /// met first where cells are damaged and shown as well as can be. Success otherwise. Returns at once.
    CError GetCondition() const;
    /// Rational polynomial coefficients of the file or its side files; to be freed with PLKFreeRPCData().
    /// PLK_ERR_NOT_AVAILABLE without any.
    CError GetRPCData(PLKRPCData **rpcData) const;

    ViewMetadata::ViewMetadataJp2 &MetadataJp2() { return metadataJp2; }
    const ViewMetadata::ViewMetadataJp2 &MetadataJp2() const { return metadataJp2; }
    const ViewMetadata::ViewMetadataXRV &MetadataXRV() const { return metadataXRV; }

protected:
    CError OpenFileNamed(const CString &name, const COpenControl &control = {});
    /// Forgets the file; \a freeCache drops its decoded tiles, unless another object has it open.
    void CloseFile(bool freeCache);
    const std::shared_ptr<xrv::OpenFile> &SharedFile() const { return file; }

private:
    class FileFacade;
    std::shared_ptr<xrv::OpenFile> file;
    std::unique_ptr<FileFacade> facade;
    ViewMetadata::ViewMetadataJp2 metadataJp2;
    ViewMetadata::ViewMetadataXRV metadataXRV;
};

} // namespace PLK::SDK
