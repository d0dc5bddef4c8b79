#pragma once

#include "ctannisviewercharlogger.h"
#include "ctannisviewerwcharlogger.h"

/// The two log sinks of the process. They are made, and read "XRVJP2kLayer/LogXrvEvents", when the library is loaded.
CTANNISViewerCharLogger &charLogSink();
CTANNISViewerWCharLogger &wcharLogSink();

/// Switches both sinks on or off. GUI thread.
void setLogSinksEnabled(bool enabled);
