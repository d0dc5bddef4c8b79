#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <vector>

/// How a program ended.
struct ToolRun
{
    int status = -1; ///< -1 where it crashed or did not end
    QString output, errors;
};

/// Runs xrvcompress or xrvinfo.
ToolRun runTool(const QString &tool, const QStringList &arguments);

/// What xrvinfo says of \a path; empty where it fails.
QJsonObject infoOf(const QString &path, const QStringList &options = {});

/// All cells of a band of an XRV or JPEG 2000 file; empty on failure.
std::vector<std::int32_t> cellsOf(const QString &path, int band);
