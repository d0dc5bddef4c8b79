#pragma once

#include <QProcess>
#include <QStringList>

/// What a run of the program came to.
struct ProgramRun
{
    int status = -1; ///< exit code; -1 when it crashed or did not end
    QByteArray out, err;
};

/// Runs the program with the plug-in in surroundings without a display, changed by \a variables ("NAME=value").
inline ProgramRun runViewer(const QStringList &arguments, const QStringList &variables = {})
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "XDG_RUNTIME_DIR", "LC_ALL", "LC_NUMERIC",
                             "LC_MESSAGES", "LC_CTYPE", "LANGUAGE", "LANG"})
        environment.remove(QLatin1String(name));
    environment.insert(QStringLiteral("QDVIEWER_PLUGIN_PATH"), QStringLiteral(PLUGIN_FOLDER));
    for (const QString &variable : variables)
        environment.insert(variable.section(QLatin1Char('='), 0, 0), variable.section(QLatin1Char('='), 1));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(QDVIEWER_PROGRAM), arguments);
    ProgramRun run;
    // Sanitizers and busy machines make everything slower; a hang takes for ever.
    if (process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit)
        run.status = process.exitCode();
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}
