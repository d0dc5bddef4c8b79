#include "sourceparts.h"

#include "base/utf8.h"
#include "geo/geojp2.h"
#include "stream/opensource.h"
#include "xrv/xrvstructure.h"

#include <xrv60/plkinit.h>
#include <xrv60/plkview.h>

#include <algorithm>

using PLK::CError;
using namespace xrv;

namespace {

constexpr std::size_t kBandsAtATime = 4; ///< of a view
constexpr std::uint64_t kMaxXml = 64u << 20;

/// A JPEG 2000 or XRV file, through the SDK's own view: palettes, luma-chroma and colour profiles come as they are
/// shown, other bands as they are.
class ViewSource : public ImageSource
{
public:
    ~ViewSource() override { view.Close(true); }

    CError open(const std::string &path, std::vector<std::string> *)
    {
        if (CError error = view.Open(PLK::CString(path.c_str()), false, false))
            return error;
        const PLKFileInfo &info = *view.GetFileInfo();
        image.width = info.nSizeX;
        image.height = info.nSizeY;
        image.colourSpace = info.eColorSpace;
        for (int i = 0; i < info.nBands; ++i)
            image.bands.push_back(bandOf(info, info.pBands[i]));
        image.isLastOpacity = image.bands.size() > 1 && image.bands.back().description == "AllOpacity";
        readPlace(info);
        readTexts(info);
        readRpc();
        if (CError error = readXmls())
            return error;
        return readGeoTags(path);
    }

    const ImageDescription &description() const override { return image; }

    CError read(const IntRect &rect, const std::vector<std::int32_t *> &planes) override
    {
        for (std::size_t first = 0, count = 0; first < planes.size(); first += count) {
            const CellKind kind = image.bands[first].kind;
            for (count = 1; count < kBandsAtATime && first + count < planes.size(); ++count)
                if (image.bands[first + count].kind != kind)
                    break;
            if (CError error = readBands(rect, static_cast<int>(first), planes.data() + first, count))
                return error;
        }
        return {};
    }

    CError rewind() override { return {}; }

private:
    /// Bands of more than 16 bits are those of the next type.
    static XrvBand bandOf(const PLKFileInfo &info, const PLKBandInfo &told)
    {
        XrvBand band{told.nBits, told.bSigned, told.szDesc};
        if (band.bits <= 16)
            return band;
        band.bits = 32;
        band.kind = info.eCellType == PLKCT_FLOAT ? CellKind::Float
                    : band.isSigned               ? CellKind::Whole
                                                  : CellKind::Unsigned;
        return band;
    }

    CError readBands(const IntRect &rect, int firstBand, std::int32_t *const *planes, std::size_t count)
    {
        // A view shows one, three or four bands: a second one is made the third, too.
        std::vector<int> bands;
        for (std::size_t i = 0; i < count; ++i)
            bands.push_back(firstBand + static_cast<int>(i));
        double x0 = 0.0, y0 = 0.0, x1 = 0.0, y1 = 0.0;
        view.ConvertDatasetToWorld(double(rect.x0), double(rect.y0), &x0, &y0);
        view.ConvertDatasetToWorld(double(rect.x1), double(rect.y1), &x1, &y1);
        if (CError error = view.SetView(static_cast<int>(count), bands.data(), static_cast<int>(rect.width()),
                                        static_cast<int>(rect.height()), x0, y0, x1, y1))
            return error;
        const CellKind kind = image.bands[static_cast<std::size_t>(firstBand)].kind;
        const PLKCellType type = kind == CellKind::Float      ? PLKCT_FLOAT
                                 : kind == CellKind::Unsigned ? PLKCT_UINT32
                                                              : PLKCT_INT32;
        std::vector<void *> lines(count);
        for (std::int64_t y = 0; y < rect.height(); ++y) {
            for (std::size_t i = 0; i < count; ++i)
                lines[i] = planes[i] + y * rect.width();
            if (view.ReadLineBIL(type, lines.data()) != PLK_READ_SUCCESS)
                return view.GetLastError();
        }
        return {};
    }

    void readPlace(const PLKFileInfo &info)
    {
        GeoReference &place = image.place;
        view.GetWorldTransform(place.transform.data());
        place.units = info.eCellSizeUnits;
        place.epsg = view.GetEPSGCode();
        place.datum = info.szDatum;
        place.projection = info.szProjection;
        const bool isUnplaced = place.transform == GeoReference().transform && place.epsg == 0;
        place.origin = isUnplaced ? GeoReference::Origin::None : GeoReference::Origin::XrvInfo;
    }

    void readTexts(const PLKFileInfo &info)
    {
        if (!info.pFileMetaData)
            return;
        const PLKFileMetaData &texts = *info.pFileMetaData;
        const wchar_t *const all[] = {texts.sClassification,
                                      texts.sAcquisitionDate,
                                      texts.sAcquisitionSensorName,
                                      texts.sCompressionSoftware,
                                      texts.sAuthor,
                                      texts.sCopyright,
                                      texts.sCompany,
                                      texts.sEmail,
                                      texts.sAddress,
                                      texts.sTelephone};
        for (std::size_t i = 0; i < kXrvTexts; ++i)
            if (all[i])
                image.texts[i] = utf8FromWide(all[i]);
    }

    void readRpc()
    {
        PLKRPCData *rpc = nullptr;
        if (view.GetRPCData(&rpc).IsSuccess() && rpc)
            image.rpc = *rpc;
        PLKFreeRPCData(rpc);
    }

    CError readXmls()
    {
        PLK::CIOStream *stream = view.GetStream();
        for (const PLKXMLBox *box = view.GetXMLBox(nullptr); box; box = view.GetXMLBox(box)) {
            if (box->nContentLength > kMaxXml)
                continue;
            std::string text(static_cast<std::size_t>(box->nContentLength), '\0');
            if (!stream->Seek(box->nContentOffset) || !stream->Read(text.data(), text.size()))
                return {PLK_ERR_READ, "An XML box of the image cannot be read."};
            image.xmls.push_back(std::move(text));
        }
        return {};
    }

    /// The reference system in full, which the SDK tells by its names only.
    CError readGeoTags(const std::string &path)
    {
        std::shared_ptr<ByteSource> file;
        if (CError error = openSource(SourceName(path), &file))
            return error;
        XrvStructure xrv;
        Jp2Structure jp2;
        const bool isXrv = readXrvStructure(*file, &xrv, nullptr).IsSuccess();
        if (!isXrv && readJp2Structure(*file, &jp2, nullptr))
            return {};
        for (const UuidBox &box : (isXrv ? xrv.boxes : jp2).uuidBoxes) {
            if (box.uuid != kGeoJp2Uuid)
                continue;
            std::vector<std::string> ignored;
            const Placement placement = readGeoTiff(box.content, &ignored);
            if (placement.transform && *placement.transform == image.place.transform) {
                image.geoTags = geoTagsOf(box.content);
                break;
            }
        }
        return {};
    }

    PLK::CView view;
    ImageDescription image;
};

} // namespace

CError openViewSource(const std::string &path, std::unique_ptr<ImageSource> *source, std::vector<std::string> *warnings)
{
    auto made = std::make_unique<ViewSource>();
    CError error = made->open(path, warnings);
    if (error.IsSuccess())
        *source = std::move(made);
    return error;
}
