#pragma once

#include <QDGui/qdguiglobal.h>

namespace Korvane::System {

/// Physical memory of the machine in megabytes (of 2^20 bytes); 0 when the system does not tell.
QDGUI_EXPORT quint64 getTotalRAM();

} // namespace Korvane::System
