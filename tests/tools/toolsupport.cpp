#include "toolsupport.h"

#include <xrv60/plkview.h>

#include <QJsonDocument>
#include <QProcess>

ToolRun runTool(const QString &tool, const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(XRV_TOOL_DIR "/") + tool, arguments);
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

QJsonObject infoOf(const QString &path, const QStringList &options)
{
    const ToolRun run = runTool(QStringLiteral("xrvinfo"), QStringList({QStringLiteral("--json"), path}) + options);
    return QJsonDocument::fromJson(run.output.toUtf8()).object();
}

std::vector<std::int32_t> cellsOf(const QString &path, int band)
{
    PLK::CView view;
    if (view.Open(PLK::CString(path.toUtf8().constData()), false, false))
        return {};
    const PLKFileInfo &info = *view.GetFileInfo();
    const int width = int(info.nSizeX), height = int(info.nSizeY);
    double left = 0, top = 0, right = 0, bottom = 0;
    view.ConvertDatasetToWorld(0, 0, &left, &top);
    view.ConvertDatasetToWorld(width, height, &right, &bottom);
    if (view.SetView(1, &band, width, height, left, top, right, bottom))
        return {};
    std::vector<std::int32_t> cells(std::size_t(width) * std::size_t(height));
    for (int y = 0; y < height; ++y) {
        void *const line = cells.data() + std::ptrdiff_t(y) * width;
        if (view.ReadLineBIL(PLKCT_INT32, &line) != PLK_READ_SUCCESS)
            return {};
    }
    return cells;
}
