#include "xrvjp2klayermetadatabox.h"

#include "boxtexts.h"
#include "fieldtext.h"
#include "layer/xrvjp2klayer.h"
#include "layersource.h"
#include "ui_xrvjp2klayermetadatabox.h"

#include <xrv60/plkview.h>

using Korvane::XRVJP2kLayer;

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
    BoxTexts texts(view.GetStream());
    int number = 0;
    for (const PLKXMLBox *box = view.GetXMLBox(nullptr); box; box = view.GetXMLBox(box)) {
        const QString text = texts.read(*box, tr("Found an XML box, but failed to parse the content."));
        const QString label = tr("'%1' Box #%2:").arg(BoxTexts::typeName(box->nType), QString::number(++number));
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
