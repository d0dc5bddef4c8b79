#include "describe.h"

#include "base/utf8.h"

#include <xrv60/plkinit.h>
#include <xrv60/plkview.h>

using PLK::CError;

namespace {

using Size = std::pair<std::uint32_t, std::uint32_t>;

const char *nameOf(PLKCellType type)
{
    static const char *const names[] = {"UInt8", "UInt16", "UInt32", "UInt64", "Int8",
                                        "Int16", "Int32",  "Int64",  "Float",  "Double"};
    return names[type];
}

const char *nameOf(PLKColorSpace space)
{
    static const char *const names[] = {"none", "greyscale", "YUV", "multiband", "sRGB", "YCbCr"};
    return names[space];
}

const char *nameOf(PLKCellSizeUnits units)
{
    static const char *const names[] = {"invalid", "metres", "degrees", "feet"};
    return names[units];
}

Node sizeNode(Size size)
{
    Node list = Node::list();
    list.add(size.first);
    list.add(size.second);
    return list;
}

/// One report on one open view.
class Describer
{
public:
    CError open(const std::string &name)
    {
        if (CError error = view.Open(PLK::CString(name.c_str()), false, false))
            return error;
        info = view.GetFileInfo();
        return {};
    }

    CError describe(const std::string &name, const DescribeOptions &options, Node *report)
    {
        report->add("file", name);
        addFormat(report);
        report->add("size", sizeNode({info->nSizeX, info->nSizeY}));
        report->add("cell type", nameOf(info->eCellType));
        report->add("colour space", nameOf(info->eColorSpace));
        report->add("bands", bands());
        report->add("place", place());
        report->add("compression", compression());
        if (info->pFileMetaData)
            report->add("texts", texts());
        report->add("codestream", codestream());
        report->add("xml boxes", xmlBoxes());
        PLKRPCData *rpc = nullptr;
        if (view.GetRPCData(&rpc).IsSuccess())
            report->add("rpc", rpcNode(*rpc));
        PLKFreeRPCData(rpc);
        return addStatistics(options, report);
    }

private:
    void addFormat(Node *report) const
    {
        const bool isXrv = view.GetFileType() == PLK_FILE_XRV;
        report->add("format", isXrv ? "XRV" : "JPEG 2000");
        report->add("format version", int(info->nFormatVersion));
        report->add("bytes", view.GetStream()->GetSize());
    }

    Node bands() const
    {
        Node list = Node::list();
        for (int i = 0; i < info->nBands; ++i) {
            Node band = Node::object();
            band.add("description", info->pBands[i].szDesc);
            band.add("bits", int(info->pBands[i].nBits));
            band.add("signed", info->pBands[i].bSigned);
            list.add(std::move(band));
        }
        return list;
    }

    Node place() const
    {
        Node node = Node::object();
        const int epsg = view.GetEPSGCode();
        node.add("epsg", epsg > 0 ? Node(epsg) : Node());
        node.add("datum", info->szDatum);
        node.add("projection", info->szProjection);
        node.add("units", nameOf(info->eCellSizeUnits));
        Node origin = Node::list(), increments = Node::list();
        origin.add(info->fOriginX);
        origin.add(info->fOriginY);
        increments.add(info->fCellIncrementX);
        increments.add(info->fCellIncrementY);
        node.add("origin", std::move(origin));
        node.add("cell increments", std::move(increments));
        node.add("clockwise rotation", info->fCWRotationDegrees);
        return node;
    }

    Node compression() const
    {
        Node node = Node::object();
        const Size block = view.MetadataXRV().Blocksize();
        const bool isReversible = view.MetadataJp2().TransformationType() == 1;
        node.add("lossless", isReversible);
        node.add("target rate",
                 info->nCompressionRate > 0 && !isReversible ? Node(int(info->nCompressionRate)) : Node());
        node.add("actual rate", info->fActualCompressionRate > 0 ? Node(double(info->fActualCompressionRate)) : Node());
        node.add("date", *info->szCompressionDate ? Node(info->szCompressionDate) : Node());
        node.add("block size", block.first > 0 ? sizeNode(block) : Node());
        return node;
    }

    Node texts() const
    {
        const PLKFileMetaData &all = *info->pFileMetaData;
        const std::pair<const char *, const wchar_t *> entries[] = {
            {"classification", all.sClassification},
            {"acquisition date", all.sAcquisitionDate},
            {"acquisition sensor", all.sAcquisitionSensorName},
            {"compression software", all.sCompressionSoftware},
            {"author", all.sAuthor},
            {"copyright", all.sCopyright},
            {"company", all.sCompany},
            {"e-mail", all.sEmail},
            {"address", all.sAddress},
            {"telephone", all.sTelephone},
        };
        Node node = Node::object();
        for (const auto &[name, text] : entries)
            if (text)
                node.add(name, xrv::utf8FromWide(text));
        return node;
    }

    Node codestream() const
    {
        static const char *const orders[] = {"LRCP", "RLCP", "RPCL", "PCRL", "CPRL"};
        const auto &jp2 = view.MetadataJp2();
        Node node = Node::object();
        node.add("tiles", sizeNode(jp2.NumberOfTiles()));
        node.add("tile size", sizeNode(jp2.TileSize()));
        node.add("code-blocks", sizeNode(jp2.CodeBlock()));
        node.add("block coding", jp2.IsHighThroughput() ? "high-throughput" : "ordinary");
        node.add("resolution levels", jp2.Levels());
        node.add("quality layers", jp2.Layers());
        const int order = jp2.PrecinctProgressionOrder();
        node.add("progression order", order >= 0 && order < 5 ? Node(orders[order]) : Node());
        node.add("wavelet", jp2.TransformationType() == 1 ? "5-3 reversible" : "9-7 irreversible");
        return node;
    }

    Node xmlBoxes() const
    {
        Node list = Node::list();
        for (const PLKXMLBox *box = view.GetXMLBox(nullptr); box; box = view.GetXMLBox(box)) {
            Node node = Node::object();
            node.add("offset", box->nContentOffset);
            node.add("bytes", box->nContentLength);
            list.add(std::move(node));
        }
        return list;
    }

    static Node rpcNode(const PLKRPCData &rpc)
    {
        Node node = Node::object();
        const std::pair<const char *, double> entries[] = {
            {"error bias", rpc.fErrorBias},           {"error random", rpc.fErrorRandom},
            {"line offset", rpc.fLineOffset},         {"sample offset", rpc.fSampleOffset},
            {"latitude offset", rpc.fLatitudeOffset}, {"longitude offset", rpc.fLongitudeOffset},
            {"height offset", rpc.fHeightOffset},     {"line scale", rpc.fLineScale},
            {"sample scale", rpc.fSampleScale},       {"latitude scale", rpc.fLatitudeScale},
            {"longitude scale", rpc.fLongitudeScale}, {"height scale", rpc.fHeightScale}};
        for (const auto &[name, value] : entries)
            node.add(name, value);
        const std::pair<const char *, const double *> lists[] = {{"line numerator", rpc.fLineNumerator},
                                                                 {"line denominator", rpc.fLineDenominator},
                                                                 {"sample numerator", rpc.fSampleNumerator},
                                                                 {"sample denominator", rpc.fSampleDenominator}};
        for (const auto &[name, values] : lists) {
            Node list = Node::list();
            for (int i = 0; i < 20; ++i)
                list.add(values[i]);
            node.add(name, std::move(list));
        }
        return node;
    }

    CError addStatistics(const DescribeOptions &options, Node *report)
    {
        if (options.countsAllCells) {
            view.StartCountingStatistics();
            if (CError error = view.WaitForStatistics())
                return error;
        }
        PLKFileStatistics *statistics = nullptr;
        if (CError error = view.GetClientStatistics(&statistics))
            return error;
        Node list = Node::list();
        for (std::uint32_t i = 0; i < statistics->nBands; ++i)
            list.add(bandStatistics(statistics->pBandStats[i], options.withHistograms));
        PLKFreeStatistics(statistics);
        report->add("statistics", std::move(list));
        return {};
    }

    Node bandStatistics(const PLKBandStatistics &band, bool withHistogram) const
    {
        Node node = Node::object();
        if (view.GetStatisticsState() != PLK_STATISTICS_EXACT)
            node.add("estimated", true);
        node.add("minimum", double(band.fMin));
        node.add("maximum", double(band.fMax));
        node.add("mean", double(band.fMean));
        node.add("median", double(band.fMedian));
        node.add("mode", double(band.fMode));
        node.add("standard deviation", double(band.fStandardDev));
        node.add("buckets", band.nHistBucketCount);
        if (!withHistogram)
            return node;
        Node counts = Node::list();
        for (std::uint32_t i = 0; i < band.nHistBucketCount; ++i)
            counts.add(band.pHistogram[i]);
        node.add("histogram", std::move(counts));
        return node;
    }

    PLK::CView view;
    const PLKFileInfo *info = nullptr;
};

} // namespace

CError describe(const std::string &name, const DescribeOptions &options, Node *report)
{
    *report = Node::object();
    Describer describer;
    if (CError error = describer.open(name))
        return error;
    return describer.describe(name, options, report);
}
