#include "ctannisviewercharlogger.h"

#include "loglevels.h"

CTANNISViewerCharLogger::CTANNISViewerCharLogger(bool enabled)
    : enabled(enabled)
{
}

void CTANNISViewerCharLogger::attach(void *)
{
}

void CTANNISViewerCharLogger::detach(void *)
{
}

bool CTANNISViewerCharLogger::isLevelEnabled(void *, int level)
{
    return enabled && isSdkLevelLogged(level);
}

void CTANNISViewerCharLogger::write(void *, int level, const char *text)
{
    logSdkMessage(QString::fromUtf8(text), level);
}
