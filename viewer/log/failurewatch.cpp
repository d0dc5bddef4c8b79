#include "failurewatch.h"

#include <QDGui/application.h>

#include <QCoreApplication>

#include <utility>

namespace Viewer {

using Korvane::Application;

FailureWatch::FailureWatch()
{
    take(); // what was logged before is not told by the signal any more
    connect(Application::instance(), &Application::messageLogged, this,
            [this](const QString &text, Application::LogLevel level) {
                if (level >= Application::LogError)
                    sentences.append(text);
            });
}

QStringList FailureWatch::take()
{
    // The log tells of its lines from the event loop.
    QCoreApplication::sendPostedEvents(Application::instance());
    return std::exchange(sentences, QStringList());
}

} // namespace Viewer
