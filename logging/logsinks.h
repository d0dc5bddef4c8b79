#pragma once

#include <xrv60/plklog.h>

#include <atomic>

/// Passes the SDK's messages, of one kind of characters, on to the host's log. Any thread.
template <typename Char> class HostLogSink : public PLK::ILogger<Char>
{
public:
    explicit HostLogSink(bool enabled)
        : enabled(enabled)
    {
    }

    void attach(void *) override {}
    void detach(void *) override {}
    /// Whether the sink is enabled and the host's log, at its present level, takes a message of the SDK's \a level.
    bool isLevelEnabled(void *context, int level) override;

    void setEnabled(bool on) { enabled = on; }

private:
    std::atomic<bool> enabled;
};

/// For the SDK's narrow messages.
class CTANNISViewerCharLogger : public HostLogSink<char>
{
public:
    using HostLogSink::HostLogSink;

    /// \a text is UTF-8; null is an empty text. Does not ask whether the sink is enabled.
    void write(void *context, int level, const char *text) override;
};

/// For the SDK's wide messages.
class CTANNISViewerWCharLogger : public HostLogSink<wchar_t>
{
public:
    using HostLogSink::HostLogSink;

    /// \a text is not null. Does not ask whether the sink is enabled.
    void write(void *context, int level, const wchar_t *text) override;
};

/// The two log sinks of the process. They are made, and read their setting, when the library is loaded.
CTANNISViewerCharLogger &charLogSink();
CTANNISViewerWCharLogger &wcharLogSink();

/// Switches both sinks on or off. GUI thread.
void setLogSinksEnabled(bool enabled);
