#pragma once

#include <QDGui/ilayerpropertieswidget.h>

#include <QPointer>
#include <QWidget>

#include <memory>

namespace Ui {
class XRVJP2LayerMetaDataBox;
}
namespace Korvane {
class XRVJP2kLayer;
}
namespace PLK {
class CView;
}

/// Read-only page of the XML boxes of a file.
class XRVJP2kLayerMetaDataBox : public QWidget, public Korvane::ILayerPropertiesWidget
{
    Q_OBJECT
    Q_INTERFACES(Korvane::ILayerPropertiesWidget)

public:
    explicit XRVJP2kLayerMetaDataBox(QWidget *parent = nullptr);
    ~XRVJP2kLayerMetaDataBox() override;

public Q_SLOTS:
    /// Lists the boxes of \a pLayer's file, which is opened a second time for that and closed again, and shows the
    /// first. Nothing is listed of null and of layers of another class.
    void setLayer(Korvane::Map::Layer *pLayer) override;
    /// There is nothing to apply.
    void apply() override {}
    void onComboBoxActivated(int index);

private:
    Q_DISABLE_COPY(XRVJP2kLayerMetaDataBox)

    void listBoxes(const PLK::CView &view);

    std::unique_ptr<Ui::XRVJP2LayerMetaDataBox> ui;
    QPointer<Korvane::XRVJP2kLayer> layer;
};
