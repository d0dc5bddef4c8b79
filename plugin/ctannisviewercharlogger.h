#pragma once

#include <xrv60/plklog.h>

#include <atomic>

/// Passes the SDK's narrow messages on to the host's log.
class CTANNISViewerCharLogger : public PLK::ILogger<char>
{
public:
    explicit CTANNISViewerCharLogger(bool enabled);

    void attach(void *context) override;
    void detach(void *context) override;
    bool isLevelEnabled(void *context, int level) override;
    /// \a text is UTF-8; null is an empty text. Does not ask whether the sink is enabled.
    void write(void *context, int level, const char *text) override;

    /// Any thread.
    void setEnabled(bool on) { enabled = on; }

private:
    std::atomic<bool> enabled;
};
