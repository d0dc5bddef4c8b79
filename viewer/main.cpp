#include "appearance/icons.h"
#include "appearance/translations.h"
#include "batch/batchrunner.h"
#include "batch/commandline.h"
#include "plugins/pluginfolders.h"
#include "window/mainwindow.h"

#include <QDGui/application.h>
#include <QDGui/pluginregistry.h>

#include <QApplication>
#include <QFileInfo>
#include <QFont>
#include <QLocale>
#include <QSettings>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <optional>

#ifdef Q_OS_UNIX
#include <langinfo.h>
#endif

using namespace Viewer;

namespace {

constexpr int kFailure = 1;
constexpr int kUsageError = 2;
constexpr double kOffscreenFontSize = 9.0;

/// In the plain "C" locale, file names beyond ASCII would be lost between the command line and the file system. The
/// same goes for a locale that the C library does not have; Qt knows its language and formats all the same, so they
/// stay.
void ensureUtf8Locale()
{
#ifdef Q_OS_LINUX
    std::setlocale(LC_CTYPE, "");
    if (qstrcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") != 0)
        return;
    const QByteArray everything = qgetenv("LC_ALL");
    if (!everything.isEmpty()) {
        for (const char *name : {"LANG", "LC_NUMERIC", "LC_TIME", "LC_MONETARY", "LC_MEASUREMENT", "LC_MESSAGES"})
            qputenv(name, everything);
        qunsetenv("LC_ALL");
    }
    qputenv("LC_CTYPE", "C.UTF-8");
    std::setlocale(LC_CTYPE, "");
#endif
}

/// Without a display the toolkit would end the program; with this platform it draws in memory. So it does where no
/// window is asked for: the map's picture then depends on no display, and what the pages copy for a description stays
/// off the clipboard that a person is using. Returns whether there is a window system, or one was named, that a person
/// can be expected to see a window on.
bool ensurePlatform(bool needsWindow)
{
#ifdef Q_OS_LINUX
    const bool hasDisplay = !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    if ((!hasDisplay || !needsWindow) && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return false;
    }
#else
    Q_UNUSED(needsWindow);
#endif
    return true;
}

/// Before the toolkit is there to take the command line apart.
bool needsWindow(int argc, char *argv[])
{
    const auto has = [&](const QByteArray &option) {
        return std::any_of(argv, argv + argc, [&](const char *argument) {
            return argument == option || QByteArray(argument).startsWith(option + '=');
        });
    };
    return !has("--describe") && (has("--window") || !has("--screenshot"));
}

/// What the toolkit grumbles about belongs into the log: standard error is for what a person has to know.
void logToolkitMessage(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    using Korvane::Application;
    Application::LogLevel level = Application::LogTrace;
    if (type == QtWarningMsg)
        level = Application::LogWarning;
    else if (type == QtCriticalMsg || type == QtFatalMsg)
        level = Application::LogError;
    Application::logMessage(text, level, QDateTime::currentDateTime());
    if (level == Application::LogError)
        std::fprintf(stderr, "qdviewer: %s\n", qPrintable(text.simplified()));
}

/// The toolkit ends the program by a signal when it finds no window system; nothing is open yet that must be closed.
void refuseWithoutWindows(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    static QString reason;
    if (type == QtWarningMsg && reason.isEmpty())
        reason = text.simplified();
    if (type != QtFatalMsg) {
        logToolkitMessage(type, context, text);
        return;
    }
    std::fprintf(stderr, "qdviewer: No window can be shown (%s); --screenshot and --describe work without a display.\n",
                 qPrintable(reason.isEmpty() ? text.simplified() : reason));
    std::_Exit(kFailure);
}

void nameApplication()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Korvane"));
    QCoreApplication::setApplicationName(QStringLiteral("qdviewer"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QDVIEWER_VERSION));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("QDViewer"));
}

void dressApplication()
{
    QApplication::setWindowIcon(Icons::icon(Icons::Shape::Map));
    // The platform without a display has no desktop to take a size from, and its default is twice the usual area.
    if (QGuiApplication::platformName() == QLatin1String("offscreen")) {
        QFont font = QApplication::font();
        font.setPointSizeF(kOffscreenFontSize);
        QApplication::setFont(font);
    }
}

/// Loads the plug-ins of the first folder that has any: a build is not mixed with an installation.
void loadPlugins(Korvane::PluginRegistry *registry)
{
    const QStringList folders = pluginFolders();
    for (const QString &folder : folders) {
        if (registry->loadFolder(folder) > 0)
            break;
    }
    const QStringList errors = registry->getErrors();
    for (const QString &error : errors)
        Korvane::Application::logMessage(error, Korvane::Application::LogWarning, QDateTime::currentDateTime());
    if (registry->getPlugins().isEmpty()) {
        const QString text = QCoreApplication::translate("Viewer", "No layer plug-in was found in %1.")
                                 .arg(folders.join(QStringLiteral(", ")));
        Korvane::Application::logMessage(text, Korvane::Application::LogError, QDateTime::currentDateTime());
    }
}

int refuse(const QString &sentence, int status)
{
    QTextStream(stderr) << QCoreApplication::applicationName() << ": " << sentence << '\n';
    return status;
}

int runWindow(const CommandLine &commandLine, const Korvane::PluginRegistry &registry)
{
    MainWindow window(registry);
    window.restoreLayout();
    window.show();
    // From the event loop, so that the window is there when a dialog tells of a failure.
    QTimer::singleShot(0, &window, [&] { window.openSources(commandLine.sources); });
    return QApplication::exec();
}

int answer(const CommandLine &commandLine, QTextStream &out)
{
    if (commandLine.outcome == CommandLine::Outcome::Error)
        return refuse(commandLine.text, kUsageError);
    out << commandLine.text;
    return 0;
}

/// Before the plug-ins are loaded: they read their settings as they are.
bool useSettings(const QString &fileName)
{
    // What is saved takes the place of what was there: that must not be a device.
    const QFileInfo info(fileName);
    if (info.exists() && !info.isFile())
        return false;
    Korvane::Application::instance()->setSettingsFile(fileName);
    QSettings *settings = Korvane::Application::instance()->settings();
    settings->sync();
    return settings->status() == QSettings::NoError;
}

} // namespace

int main(int argc, char *argv[])
{
    ensureUtf8Locale();
    const bool hasWindows = ensurePlatform(needsWindow(argc, argv));
    qInstallMessageHandler(refuseWithoutWindows);
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    nameApplication();
    QApplication application(argc, argv);
    qInstallMessageHandler(logToolkitMessage);

    dressApplication();
    QTextStream out(stdout);
    QTextStream err(stderr);
    out.setCodec("UTF-8");
    const CommandLine commandLine = CommandLine::parse(QCoreApplication::arguments());
    if (commandLine.outcome != CommandLine::Outcome::Run)
        return answer(commandLine, out);
    if (!commandLine.isBatch() && !hasWindows)
        return refuse(QStringLiteral("There is no display to show a window on; --screenshot, --window and --describe "
                                     "work without one."),
                      kFailure);
    if (!commandLine.settingsFile.isEmpty() && !useSettings(commandLine.settingsFile))
        return refuse(QStringLiteral("The settings file %1 cannot be used.").arg(commandLine.settingsFile), kFailure);
    // What scripts read is English, that of the plug-ins too; a window speaks the user's language, also in a picture.
    // Before the plug-ins: they may make windows of the host's as soon as they are loaded.
    std::optional<Translations> translations;
    if (!commandLine.isBatch())
        translations.emplace();
    else if (commandLine.windowFile.isEmpty())
        QLocale::setDefault(QLocale::c());
    Korvane::PluginRegistry registry;
    loadPlugins(&registry);
    try {
        if (!commandLine.isBatch())
            return runWindow(commandLine, registry);
        return BatchRunner(commandLine, registry, out, err).run();
    } catch (const std::bad_alloc &) {
        return refuse(QStringLiteral("There is not enough memory."), kFailure);
    }
}
