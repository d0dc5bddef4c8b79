#include "fakelayer.h"

#include <QDGui/ilayerplugin.h>
#include <QDGui/ilayerplugininfo.h>

/// A plug-in that makes layers and has no user interface of its own.
class GoodPlugin : public QObject, public ILayerPluginInfo, public ILayerPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.korvane.viewer.plugin.GoodPlugin")
    Q_CLASSINFO("FurtherFilePatterns", "*.more *.most")
    Q_INTERFACES(ILayerPluginInfo ILayerPlugin)

public:
    QString getVersion() const override { return QStringLiteral("1"); }
    QString getVendor() const override { return QString(); }
    QString getDescription() const override { return QStringLiteral("Good"); }
    QString getClassName() const override { return QStringLiteral("FakeLayer"); }
    QString getId() const override { return QStringLiteral("good"); }
    QIcon getIcon() const override { return QIcon(); }
    QString getFileFilter() const override
    {
        return QStringLiteral("Plain (*.abc);;Some Url(*.url);;Sets (of things)(*.jp2 *.j2k)");
    }
    void setEnabled(bool wanted) override { enabled = wanted; }
    bool isEnabled() const override { return enabled; }
    Korvane::Map::Layer *createLayer(bool) override { return new FakeLayer(QRectF(0, 0, 1, -1)); }

private:
    bool enabled = true;
};

#include "goodplugin.moc"
