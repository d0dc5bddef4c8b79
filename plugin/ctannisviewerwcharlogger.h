#pragma once

#include <xrv60/plklog.h>

#include <atomic>

/// Passes the SDK's wide messages on to the host's log.
class CTANNISViewerWCharLogger : public PLK::ILogger<wchar_t>
{
public:
    explicit CTANNISViewerWCharLogger(bool enabled);

    void attach(void *context) override;
    void detach(void *context) override;
    bool isLevelEnabled(void *context, int level) override;
    /// \a text is not null. Does not ask whether the sink is enabled.
    void write(void *context, int level, const wchar_t *text) override;

    /// Any thread.
    void setEnabled(bool on) { enabled = on; }

private:
    std::atomic<bool> enabled;
};
