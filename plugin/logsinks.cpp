#include "logsinks.h"

#include <QDGui/application.h>

#include <QSettings>

namespace {

bool isLoggingWanted()
{
    const QSettings *settings = Korvane::Application::instance()->settings();
    return settings->value(QStringLiteral("XRVJP2kLayer/LogXrvEvents"), true).toBool();
}

CTANNISViewerCharLogger charSink(isLoggingWanted());
CTANNISViewerWCharLogger wcharSink(isLoggingWanted());

} // namespace

CTANNISViewerCharLogger &charLogSink()
{
    return charSink;
}

CTANNISViewerWCharLogger &wcharLogSink()
{
    return wcharSink;
}

void setLogSinksEnabled(bool enabled)
{
    charSink.setEnabled(enabled);
    wcharSink.setEnabled(enabled);
}
