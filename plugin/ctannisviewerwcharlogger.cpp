#include "ctannisviewerwcharlogger.h"

#include "loglevels.h"

CTANNISViewerWCharLogger::CTANNISViewerWCharLogger(bool enabled)
    : enabled(enabled)
{
}

void CTANNISViewerWCharLogger::attach(void *)
{
}

void CTANNISViewerWCharLogger::detach(void *)
{
}

bool CTANNISViewerWCharLogger::isLevelEnabled(void *, int level)
{
    return enabled && isSdkLevelLogged(level);
}

void CTANNISViewerWCharLogger::write(void *, int level, const wchar_t *text)
{
    logSdkMessage(QString::fromWCharArray(text), level);
}
