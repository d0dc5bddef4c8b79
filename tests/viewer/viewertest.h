#pragma once

#include <QDGui/application.h>
#include <QDGui/pluginregistry.h>

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

/// What the viewer's tests share: a scratch folder, settings of their own and the test plug-in.
class ViewerTest
{
public:
    ViewerTest()
    {
        Korvane::Application::instance()->setSettingsFile(path(QStringLiteral("settings.ini")));
        registry.loadFile(QStringLiteral(QUAD_PLUGIN));
    }

    QString path(const QString &name) const { return folder.filePath(name); }

    /// Writes a file for QuadLayer and returns its name.
    QString quad(const QString &name, const QByteArray &line = "QUAD 40 20 500 1000 2") const
    {
        return write(name, line + '\n');
    }
    QString write(const QString &name, const QByteArray &content) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
        return file.fileName();
    }
    QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir folder;
    Korvane::PluginRegistry registry;
};
