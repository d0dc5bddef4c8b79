#pragma once

#include <QObject>
#include <QStringList>

namespace Viewer {

/// Gathers what is logged as critical or worse. So layers tell of what fails after they were opened, a picture or
/// statistics, for which their interface has no place. GUI thread.
class FailureWatch : public QObject
{
public:
    FailureWatch();

    /// What has been logged since the last call, by any thread, in order.
    QStringList take();

private:
    QStringList sentences;
};

} // namespace Viewer
