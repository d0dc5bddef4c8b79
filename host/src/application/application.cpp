#include <QDGui/application.h>

#include <QCoreApplication>
#include <QEvent>
#include <QMainWindow>
#include <QPointer>
#include <QSettings>
#include <QStringList>
#include <QTranslator>

#include <atomic>
#include <deque>
#include <mutex>
#include <vector>

namespace Korvane {

namespace {

QEvent::Type logEventType()
{
    static const auto kType = static_cast<QEvent::Type>(QEvent::registerEventType());
    return kType;
}

std::atomic<int> currentLogLevel{Application::LogDebug};

QString orDefault(const QString &name, QLatin1String defaultName)
{
    return name.isEmpty() ? QString(defaultName) : name;
}

std::unique_ptr<QSettings> userSettings()
{
    return std::make_unique<QSettings>(orDefault(QCoreApplication::organizationName(), QLatin1String("Korvane")),
                                       orDefault(QCoreApplication::applicationName(), QLatin1String("QDViewer")));
}

QSharedPointer<QTranslator> loadTranslator(const QString &name)
{
    auto translator = QSharedPointer<QTranslator>::create();
    const QStringList folders = {QStringLiteral(":/translations"),
                                 QCoreApplication::applicationDirPath() + QLatin1String("/translations")};
    for (const QString &folder : folders) {
        if (translator->load(name, folder))
            return translator;
    }
    return nullptr;
}

} // namespace

struct Application::Private
{
    /// Writes the settings when the toolkit's application goes: this object never does.
    static void syncSettings();

    /// Every store that settings() ever gave, the current one last.
    std::vector<std::unique_ptr<QSettings>> stores;
    QPointer<QMainWindow> mainWindow;

    /// Guards history and undelivered.
    mutable std::mutex logMutex;
    std::deque<LogEntry> history;
    /// What messageLogged() has not told yet; a delivery is on its way whenever it is not empty.
    std::deque<LogEntry> undelivered;
};

void Application::Private::syncSettings()
{
    for (const auto &store : instance()->d->stores)
        store->sync();
}

Application::Application()
    : d(new Private)
{
    qRegisterMetaType<Korvane::Application::LogLevel>();
    qAddPostRoutine(&Private::syncSettings);
}

Application::~Application() = default;

Application *Application::instance()
{
    // Never destroyed: threads of other libraries may still log while the process ends.
    static auto *const kInstance = new Application;
    return kInstance;
}

QSettings *Application::settings()
{
    if (d->stores.empty())
        d->stores.push_back(userSettings());
    return d->stores.back().get();
}

void Application::setSettingsFile(const QString &fileName)
{
    if (!d->stores.empty())
        d->stores.back()->sync();
    d->stores.push_back(fileName.isEmpty() ? userSettings()
                                           : std::make_unique<QSettings>(fileName, QSettings::IniFormat));
}

void Application::logMessage(const QString &text, LogLevel level, const QDateTime &time)
{
    if (level < getLogLevel())
        return;
    Application *const application = instance();
    Private &log = *application->d;
    {
        const std::lock_guard<std::mutex> lock(log.logMutex);
        const LogEntry entry{text, level, time};
        log.history.push_back(entry);
        if (log.history.size() > kMaxLogEntries)
            log.history.pop_front();
        log.undelivered.push_back(entry);
        if (log.undelivered.size() > kMaxLogEntries)
            log.undelivered.pop_front();
        if (log.undelivered.size() > 1)
            return;
    }
    QCoreApplication::postEvent(application, new QEvent(logEventType()));
}

Application::LogLevel Application::getLogLevel()
{
    return static_cast<LogLevel>(currentLogLevel.load(std::memory_order_relaxed));
}

void Application::setLogLevel(LogLevel level)
{
    currentLogLevel.store(qBound<int>(LogTrace, level, LogFatal), std::memory_order_relaxed);
}

QString Application::getLogLevelName(LogLevel level)
{
    switch (level) {
    case LogTrace:
        return tr("Trace");
    case LogDebug:
        return tr("Debug");
    case LogInfo:
        return tr("Information");
    case LogWarning:
        return tr("Warning");
    case LogError:
        return tr("Error");
    case LogFatal:
        return tr("Fatal");
    }
    return QString();
}

QVector<Application::LogEntry> Application::getLogHistory() const
{
    const std::lock_guard<std::mutex> lock(d->logMutex);
    QVector<LogEntry> entries;
    entries.reserve(static_cast<int>(d->history.size()));
    for (const LogEntry &entry : d->history)
        entries.append(entry);
    return entries;
}

void Application::clearLogHistory()
{
    const std::lock_guard<std::mutex> lock(d->logMutex);
    d->history.clear();
}

bool Application::event(QEvent *event)
{
    if (event->type() != logEventType())
        return QObject::event(event);
    std::deque<LogEntry> entries;
    {
        const std::lock_guard<std::mutex> lock(d->logMutex);
        entries.swap(d->undelivered);
    }
    for (const LogEntry &entry : entries)
        Q_EMIT messageLogged(entry.text, entry.level, entry.time);
    return true;
}

QList<QSharedPointer<QTranslator>> Application::initializeTranslations(const QStringList &names, const QString &locale)
{
    QList<QSharedPointer<QTranslator>> translators;
    for (const QString &name : names) {
        const QSharedPointer<QTranslator> translator = loadTranslator(name + QLatin1Char('_') + locale);
        if (translator && QCoreApplication::installTranslator(translator.data()))
            translators.append(translator);
    }
    return translators;
}

QMainWindow *Application::getMainWindow() const
{
    return d->mainWindow;
}

void Application::setMainWindow(QMainWindow *window)
{
    d->mainWindow = window;
}

} // namespace Korvane
