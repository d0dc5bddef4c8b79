#pragma once

#include <QDGui/qdguiglobal.h>

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QVector>

#include <memory>

class QMainWindow;
class QSettings;
class QStringList;
class QTranslator;

namespace Korvane {

/// The host application's services: settings store, log, translations and main window. There is one object, made on
/// first use, also before the toolkit's application object exists; it lives until the process ends.
class QDGUI_EXPORT Application : public QObject
{
    Q_OBJECT

public:
    /// From the most detailed to the most severe.
    enum LogLevel { LogTrace = 0, LogDebug = 1, LogInfo = 2, LogWarning = 3, LogError = 4, LogFatal = 5 };
    Q_ENUM(LogLevel)

    struct LogEntry
    {
        QString text;
        LogLevel level = LogTrace;
        QDateTime time;
    };

    static Application *instance();

    /// The settings store: that of the toolkit's organisation and application names at the first call, or the file
    /// given to setSettingsFile(). Never null. GUI thread.
    QSettings *settings();
    /// Uses the INI file \a fileName as the settings store from now on; an empty name goes back to the user's own.
    /// Objects that settings() gave before stay alive but are no longer the store.
    void setSettingsFile(const QString &fileName);

    /// Adds a line to the log unless \a level is below the log level. Any thread.
    static void logMessage(const QString &text, LogLevel level, const QDateTime &time);
    /// The least severe level that is logged. Any thread. LogDebug at first.
    static LogLevel getLogLevel();
    static void setLogLevel(LogLevel level);
    /// A name for people, such as "Warning".
    static QString getLogLevelName(LogLevel level);

    /// The newest lines, oldest first, at most kMaxLogEntries. Any thread.
    QVector<LogEntry> getLogHistory() const;
    void clearLogHistory();
    static constexpr int kMaxLogEntries = 5000;

    /// Loads and installs a translation for each of \a names: "<name>_<locale>.qm" (with the locale shortened from its
    /// end as QTranslator::load() does) from ":/translations", then from the folder "translations" next to the
    /// executable. The result holds the translators that were found; they are uninstalled when it goes. The texts of
    /// this library are there under the name "qdgui"; a host that speaks other languages than English asks for them.
    QList<QSharedPointer<QTranslator>> initializeTranslations(const QStringList &names, const QString &locale);

    /// Null when there is none, or it has been destroyed.
    QMainWindow *getMainWindow() const;
    void setMainWindow(QMainWindow *window);

Q_SIGNALS:
    /// A line was added to the log. Emitted on the GUI thread, in the order of the calls, from the event loop.
    void messageLogged(const QString &text, Korvane::Application::LogLevel level, const QDateTime &time);

protected:
    bool event(QEvent *event) override;

private:
    Application();
    ~Application() override;
    Q_DISABLE_COPY(Application)

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Korvane
