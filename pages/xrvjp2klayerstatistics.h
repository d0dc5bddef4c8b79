#pragma once

#include <QDGui/ilayerpropertieswidget.h>
#include <xrv60/plkinit.h>

#include <QStringList>
#include <QWidget>

#include <memory>

namespace Ui {
class XRVJP2kLayerStatistics;
}
class ClipboardText;

/// Read-only page of the statistics and the histogram of one band at a time.
class XRVJP2kLayerStatistics : public QWidget, public Korvane::ILayerPropertiesWidget
{
    Q_OBJECT
    Q_INTERFACES(Korvane::ILayerPropertiesWidget)

public:
    explicit XRVJP2kLayerStatistics(QWidget *parent = nullptr);
    ~XRVJP2kLayerStatistics() override;

public Q_SLOTS:
    /// Shows the first band of \a pLayer; null and layers of another class are ignored. Without statistics the bands
    /// are listed, but the fields keep their texts.
    void setLayer(Korvane::Map::Layer *pLayer) override;
    /// There is nothing to apply.
    void apply() override {}
    /// Shows the band of that number: \a index counts bands as much as entries of the list.
    void onBandChange(int index);
    /// The statistics of all bands. In the block of a band its histogram is there once per band of the file, counted
    /// from 0. Only where the text would be more than a string can hold (some 80 bands of 16 bits), or than there is
    /// memory for, it is there just once.
    void copyToClipboard();

private:
    Q_DISABLE_COPY(XRVJP2kLayerStatistics)

    struct FreeStatistics
    {
        void operator()(PLKFileStatistics *data) const { PLKFreeStatistics(data); }
    };

    void listBands(const QStringList &names);
    const PLKBandStatistics *statisticsOf(int band) const;
    void showBand(int band);
    ClipboardText clipboardText(const QStringList &counts, quint32 repetitions) const;
    void addBand(int band, const QString &counts, quint32 repetitions, ClipboardText *text) const;

    std::unique_ptr<Ui::XRVJP2kLayerStatistics> ui;
    std::unique_ptr<PLKFileStatistics, FreeStatistics> statistics;
    int bandCount = 0;
};
