#pragma once

#include <QDGui/ilayerpropertieswidget.h>

#include <QPointer>
#include <QWidget>

#include <memory>

namespace Ui {
class XRVJP2kLayerFileInfo;
}
namespace Korvane {
class XRVJP2kLayer;
}
class ClipboardText;
struct PLKFileInfo;
struct PLKFileMetaData;

/// Read-only page of what the file information record says: versions, geo-reference, sizes, compression, authoring.
class XRVJP2kLayerFileInfo : public QWidget, public Korvane::ILayerPropertiesWidget
{
    Q_OBJECT
    Q_INTERFACES(Korvane::ILayerPropertiesWidget)

public:
    explicit XRVJP2kLayerFileInfo(QWidget *parent = nullptr);
    ~XRVJP2kLayerFileInfo() override;

public Q_SLOTS:
    /// Shows \a pLayer; of one of another class, or without an open file, nothing is shown and the fields keep their
    /// texts. Null is ignored.
    void setLayer(Korvane::Map::Layer *pLayer) override;
    void copyToClipboard();
    /// There is nothing to apply.
    void apply() override {}

private:
    Q_DISABLE_COPY(XRVJP2kLayerFileInfo)

    void showFileInfo(const PLKFileInfo &info);
    void showBlockSize();
    void showAuthoring(const PLKFileMetaData &authoring);
    void addFileInfo(const PLKFileInfo &info, ClipboardText *text) const;
    void addAuthoring(const PLKFileMetaData &authoring, ClipboardText *text) const;
    QString computedRatio(const PLKFileInfo &info) const;

    std::unique_ptr<Ui::XRVJP2kLayerFileInfo> ui;
    QPointer<Korvane::XRVJP2kLayer> layer;
};
