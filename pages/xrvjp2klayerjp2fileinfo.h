#pragma once

#include <QDGui/ilayerpropertieswidget.h>

#include <QPointer>
#include <QWidget>

#include <memory>

namespace Ui {
class XRVJP2kLayerJP2FileInfo;
}
namespace Korvane {
class XRVJP2kLayer;
}

/// Read-only page of the parameters in the main header of a JPEG 2000 codestream; empty for other images.
class XRVJP2kLayerJP2FileInfo : public QWidget, public Korvane::ILayerPropertiesWidget
{
    Q_OBJECT
    Q_INTERFACES(Korvane::ILayerPropertiesWidget)

public:
    explicit XRVJP2kLayerJP2FileInfo(QWidget *parent = nullptr);
    ~XRVJP2kLayerJP2FileInfo() override;

public Q_SLOTS:
    /// Shows \a pLayer; of one of another class or with another kind of image nothing is shown and the fields keep
    /// their texts. Null is ignored.
    void setLayer(Korvane::Map::Layer *pLayer) override;
    void copyToClipboard();
    /// There is nothing to apply.
    void apply() override {}

private:
    Q_DISABLE_COPY(XRVJP2kLayerJP2FileInfo)

    std::unique_ptr<Ui::XRVJP2kLayerJP2FileInfo> ui;
    QPointer<Korvane::XRVJP2kLayer> layer;
};
