#include "xrvjp2klayermetadatabox.h"

#include "fieldtext.h"
#include "layer/xrvjp2klayer.h"
#include "layersource.h"
#include "ui_xrvjp2klayermetadatabox.h"

#include <xrv60/plkview.h>

#include <QtEndian>

#include <new>
#include <optional>

using Korvane::XRVJP2kLayer;

namespace {

/// In bytes. What is longer is not text for a person to read.
constexpr quint64 kLargestBox = 256 * 1024 * 1024;

/// What \a stream holds from where it stands, up to a zero byte; nothing when it cannot be read.
std::optional<QString> readText(PLK::CIOStream &stream, quint64 length)
{
    if (length > kLargestBox || length > stream.GetSize())
        return std::nullopt;
    const std::unique_ptr<char[]> buffer(new (std::nothrow) char[length + 1]);
    if (!buffer || !stream.Read(buffer.get(), length))
        return std::nullopt;
    buffer[length] = '\0';
    return QString::fromUtf8(buffer.get());
}

/// The four characters of a box type.
QString typeName(quint32 type)
{
    const quint32 bytes = qToBigEndian(type);
    return QString::fromLatin1(reinterpret_cast<const char *>(&bytes), sizeof bytes);
}

} // namespace

XRVJP2kLayerMetaDataBox::XRVJP2kLayerMetaDataBox(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::XRVJP2LayerMetaDataBox>())
{
    ui->setupUi(this);
    connect(ui->comboBoxMetaBox, QOverload<int>::of(&QComboBox::activated), this,
            &XRVJP2kLayerMetaDataBox::onComboBoxActivated);
}

XRVJP2kLayerMetaDataBox::~XRVJP2kLayerMetaDataBox() = default;

void XRVJP2kLayerMetaDataBox::setLayer(Korvane::Map::Layer *pLayer)
{
    ui->comboBoxMetaBox->clear();
    layer = qobject_cast<XRVJP2kLayer *>(pLayer);
    if (!layer)
        return;
    {
        PLK::CView view;
        if (!view.Open(PLK::CString(layerSource(*layer).toStdWString().c_str()), false, false)) {
            listBoxes(view);
            view.Close(true);
        }
    }
    Q_EMIT ui->comboBoxMetaBox->activated(0);
}

void XRVJP2kLayerMetaDataBox::listBoxes(const PLK::CView &view)
{
    PLK::CIOStream *stream = view.GetStream();
    int number = 0;
    QString text; // a box that cannot be reached shows that of the box before it
    for (const PLKXMLBox *box = view.GetXMLBox(nullptr); box; box = view.GetXMLBox(box)) {
        if (stream && stream->Seek(box->nContentOffset))
            text = readText(*stream, box->nContentLength)
                       .value_or(tr("Found an XML box, but failed to parse the content."));
        const QString label = tr("'%1' Box #%2:").arg(typeName(box->nType), QString::number(++number));
        ui->comboBoxMetaBox->addItem(label, text);
    }
}

void XRVJP2kLayerMetaDataBox::onComboBoxActivated(int index)
{
    ui->plainTextEditMetaData->clear();
    if (!layer)
        return;
    const QVariant text = ui->comboBoxMetaBox->itemData(index, Qt::UserRole);
    if (!text.isNull())
        FieldText::showText(ui->plainTextEditMetaData, text.toString());
}
