#pragma once

#include <QJsonObject>
#include <QString>

#include <string>

/// How a program ended.
struct ToolRun
{
    int status = -1; ///< -1 where it crashed or did not end
    QString output, errors;
};

/// Arguments from a line of them, blanks between.
QStringList words(const std::string &line);

/// Runs xrvcompress or xrvinfo.
ToolRun runTool(const char *tool, const std::string &line);

/// What xrvinfo says of a file; empty where it fails.
struct Info
{
    explicit Info(const std::string &path, const std::string &options = {});
    /// "compression/lossless"
    QJsonValue at(const char *keys) const;
    QString text(const char *keys) const { return at(keys).toString(); }
    double number(const char *keys) const { return at(keys).toDouble(); }

    QJsonObject object;
};
