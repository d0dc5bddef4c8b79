#pragma once

#include <QCoreApplication>
#include <QStringList>

class QWidget;

namespace Viewer {

/// Tells a person what could not be opened: one message for one failure, a single summary for several.
class FailureReport
{
    Q_DECLARE_TR_FUNCTIONS(FailureReport)

public:
    /// \a total sources were tried. Each of \a failures is a sentence. Nothing is shown when there are none.
    static void show(QWidget *parent, const QStringList &failures, int total);
    /// The message, without the list of the single failures.
    static QString headline(const QStringList &failures, int total);
};

} // namespace Viewer
