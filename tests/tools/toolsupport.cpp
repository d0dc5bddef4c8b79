#include "toolsupport.h"

#include <QJsonDocument>
#include <QProcess>

QStringList words(const std::string &line)
{
    return QString::fromStdString(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

ToolRun runTool(const char *tool, const std::string &line)
{
    QProcess process;
    process.start(QStringLiteral(XRV_TOOL_DIR "/") + QLatin1String(tool), words(line));
    ToolRun run;
    if (!process.waitForFinished(120000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.output = QString::fromUtf8(process.readAllStandardOutput());
    run.errors = QString::fromUtf8(process.readAllStandardError());
    return run;
}

Info::Info(const std::string &path, const std::string &options)
    : object(QJsonDocument::fromJson(runTool("xrvinfo", "--json " + path + ' ' + options).output.toUtf8()).object())
{
}

QJsonValue Info::at(const char *keys) const
{
    QJsonValue value = object;
    for (const QString &key : QString::fromUtf8(keys).split(QLatin1Char('/')))
        value = value[key];
    return value;
}
