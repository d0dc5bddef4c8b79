#pragma once

#include <QDGui/ilayerpropertieswidget.h>
#include <xrv60/plkinit.h>

#include <QWidget>

#include <memory>

namespace Ui {
class XRVJP2kLayerRPCInfo;
}

/// Read-only page of the rational polynomial camera model of an image.
class XRVJP2kLayerRPCInfo : public QWidget, public Korvane::ILayerPropertiesWidget
{
    Q_OBJECT
    Q_INTERFACES(Korvane::ILayerPropertiesWidget)

public:
    explicit XRVJP2kLayerRPCInfo(QWidget *parent = nullptr);
    ~XRVJP2kLayerRPCInfo() override;

public Q_SLOTS:
    /// Shows \a pLayer. Without a camera model the fields keep their texts; null and layers of another class are
    /// ignored.
    void setLayer(Korvane::Map::Layer *pLayer) override;
    /// There is nothing to apply.
    void apply() override {}
    void copyToClipboard();

private:
    Q_DISABLE_COPY(XRVJP2kLayerRPCInfo)

    struct FreeRecord
    {
        void operator()(PLKRPCData *data) const { PLKFreeRPCData(data); }
    };

    void showRecord();
    QString coefficientText() const;

    std::unique_ptr<Ui::XRVJP2kLayerRPCInfo> ui;
    std::unique_ptr<PLKRPCData, FreeRecord> record;
};
