#include "xrvjp2klayerfileinfo.h"

#include "clipboardtext.h"
#include "fieldtext.h"
#include "fileinfotexts.h"
#include "layer/xrvjp2klayer.h"
#include "layersource.h"
#include "scrollbackground.h"
#include "ui_xrvjp2klayerfileinfo.h"

#include <QDGui/stringutil.h>
#include <xrv60/plkview.h>

#include <QFileInfo>

#include <utility>

using Korvane::XRVJP2kLayer;
using namespace FileInfoTexts;

namespace {

QString uncompressedSize(const PLKFileInfo &info)
{
    return Korvane::Util::String::formatFileSize(uncompressedBytes(info), "%2.2f");
}

} // namespace

XRVJP2kLayerFileInfo::XRVJP2kLayerFileInfo(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::XRVJP2kLayerFileInfo>())
{
    ui->setupUi(this);
    clearBackground(ui->scrollArea);
    connect(ui->copyToClipboard, &QPushButton::clicked, this, &XRVJP2kLayerFileInfo::copyToClipboard);
}

XRVJP2kLayerFileInfo::~XRVJP2kLayerFileInfo() = default;

void XRVJP2kLayerFileInfo::setLayer(Korvane::Map::Layer *pLayer)
{
    if (!pLayer)
        return;
    layer = qobject_cast<XRVJP2kLayer *>(pLayer);
    const PLKFileInfo *info = layer ? layer->getFileInfo() : nullptr;
    if (info)
        showFileInfo(*info);
}

void XRVJP2kLayerFileInfo::showFileInfo(const PLKFileInfo &info)
{
    using FieldText::showText;
    const int streamVersion = layer->getXRVPVersion();
    showText(ui->xrvpVersion, streamVersion != 0 ? QString::number(streamVersion) : QStringLiteral("Local file"));
    showText(ui->fileFormatVersion, QString::number(info.nFormatVersion));
    showText(ui->compressedSize, layer->getSizeOnDisk());
    showText(ui->uncompressedSize, uncompressedSize(info));
    showText(ui->targetCompress, QStringLiteral("%1 : 1").arg(info.nCompressionRate));
    showText(ui->actualCompress, computedRatio(info));
    showText(ui->compressDate, QString::fromUtf8(info.szCompressionDate));
    showText(ui->gdtDatum, QString::fromUtf8(info.szDatum));
    showText(ui->gdtProjection, QString::fromUtf8(info.szProjection));
    showText(ui->gdtUnits, unitsText(info.eCellSizeUnits));
    showBlockSize();
    if (info.pFileMetaData)
        showAuthoring(*info.pFileMetaData);
}

/// Of the bytes of all cells to those of the file, which may be gone by now.
QString XRVJP2kLayerFileInfo::computedRatio(const PLKFileInfo &info) const
{
    if (layer->getXRVPVersion() != 0)
        return tr("Unknown");
    const auto fileBytes = static_cast<quint64>(QFileInfo(layerSource(*layer)).size());
    return fileBytes > 0 ? QStringLiteral("%1 : 1").arg(uncompressedBytes(info) / fileBytes) : tr("Unknown");
}

void XRVJP2kLayerFileInfo::showBlockSize()
{
    const bool hasBlocks = layer->getFileType() == PLK_FILE_XRV;
    QString text;
    if (hasBlocks) {
        const auto size = layer->getFile()->MetadataXRV().Blocksize();
        text = QStringLiteral("%1 , %2").arg(size.first).arg(size.second);
    }
    FieldText::showText(ui->blockSize, text);
    ui->blockSize->setPlaceholderText(hasBlocks ? QString() : tr("Not valid for .jp2 files"));
}

void XRVJP2kLayerFileInfo::showAuthoring(const PLKFileMetaData &authoring)
{
    const std::pair<QLineEdit *, const wchar_t *> fields[] = {
        {ui->classification, authoring.sClassification},
        {ui->acquisitionDate, authoring.sAcquisitionDate},
        {ui->acquisitionSensorName, authoring.sAcquisitionSensorName},
        {ui->compressionSoftware, authoring.sCompressionSoftware},
        {ui->author, authoring.sAuthor},
        {ui->copyright, authoring.sCopyright},
        {ui->company, authoring.sCompany},
        {ui->email, authoring.sEmail},
        {ui->address, authoring.sAddress},
        {ui->telephone, authoring.sTelephone},
    };
    for (const auto &[field, text] : fields) {
        if (text)
            FieldText::showText(field, wideText(text));
    }
}

void XRVJP2kLayerFileInfo::copyToClipboard()
{
    if (!layer)
        return;
    ClipboardText text;
    if (const PLKFileInfo *info = layer->getFileInfo()) {
        addFileInfo(*info, &text);
        if (info->pFileMetaData)
            addAuthoring(*info->pFileMetaData, &text);
    }
    text.copy();
}

void XRVJP2kLayerFileInfo::addFileInfo(const PLKFileInfo &info, ClipboardText *text) const
{
    // The character of that code, not its digits: readers of the text know it so.
    const int streamVersion = layer->getXRVPVersion();
    text->addLine(tr("XRVP Version = %1"), streamVersion != 0 ? QString(QChar(streamVersion)) : tr("Local file"));
    text->addLine(tr("Format Version = %1"), QString::number(info.nFormatVersion));
    text->addLine(tr("GDT Datum = %1"), QString::fromUtf8(info.szDatum));
    text->addLine(tr("GDT Projection = %1"), QString::fromUtf8(info.szProjection));
    text->addLine(tr("GDT Units = %1"), unitsText(info.eCellSizeUnits));
    text->addLine(tr("Compressed Size = %1"), layer->getSizeOnDisk());
    text->addLine(tr("Uncompressed Size = %1"), uncompressedSize(info));
    text->addLine(tr("Target Compression Rate = %1:1"), QString::number(info.nCompressionRate));
    // Unlike the field, this is what the file says of itself.
    const auto rate = double(info.fActualCompressionRate);
    text->addLine(tr("Actual Compression Ratio = %1"),
                  rate > 0.0 ? QStringLiteral("%1:1").arg(FieldText::fixed(rate, 2)) : tr("Unknown"));
    text->addLine(tr("Compression Date = %1"), QString::fromUtf8(info.szCompressionDate));
}

void XRVJP2kLayerFileInfo::addAuthoring(const PLKFileMetaData &authoring, ClipboardText *text) const
{
    text->addLine(tr("Classification = %1"), wideText(authoring.sClassification));
    text->addLine(tr("Acquisition Date = %1"), wideText(authoring.sAcquisitionDate));
    text->addLine(tr("Acquisition Sensor Name = %1"), wideText(authoring.sAcquisitionSensorName));
    text->addLine(tr("Compression Software = %1"), wideText(authoring.sCompressionSoftware));
    text->addLine(tr("Author = %1"), wideText(authoring.sAuthor));
    text->addLine(tr("Copyright = %1"), wideText(authoring.sCopyright));
    text->addLine(tr("Company = %1"), wideText(authoring.sCompany));
    text->addLine(tr("Email = %1"), wideText(authoring.sEmail));
    text->addLine(tr("Address = %1"), wideText(authoring.sAddress));
    text->addLine(tr("Telephone = %1"), wideText(authoring.sTelephone));
}
