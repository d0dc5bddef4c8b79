#pragma once

#include <QIcon>
#include <QObject>
#include <QString>

/// Who a layer plug-in is and what it opens. The order of the functions is part of the interface.
class ILayerPluginInfo
{
public:
    virtual QString getVersion() const = 0;
    virtual QString getVendor() const = 0;
    virtual QString getDescription() const = 0;
    /// Class name of the layers that the plug-in makes; finds the plug-in for a layer stored in a project.
    virtual QString getClassName() const = 0;
    virtual QString getId() const = 0;
    virtual QIcon getIcon() const = 0;
    /// Filters of an open dialog, in QFileDialog's notation, separated by ";;".
    virtual QString getFileFilter() const = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual bool isEnabled() const = 0;

protected:
    ~ILayerPluginInfo() = default;
};

Q_DECLARE_INTERFACE(ILayerPluginInfo, "com.korvane.viewer.ILayerPluginInfo/1.0")
