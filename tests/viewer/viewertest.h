#pragma once

#include "data/testfolder.h"

#include <QDGui/application.h>
#include <QDGui/pluginregistry.h>

#include <QSettings>
#include <QTest>

/// What the viewer's tests share: a scratch folder, settings of their own and the test plug-in.
class ViewerTest : public TestFolder
{
public:
    ViewerTest() { registry.loadFile(QStringLiteral(QUAD_PLUGIN)); }

    /// Writes a file for QuadLayer and returns its name.
    QString quad(const QString &name, const QByteArray &line = "QUAD 40 20 500 1000 2") const
    {
        return writeText(name, line + '\n');
    }

    Korvane::PluginRegistry registry;
};
