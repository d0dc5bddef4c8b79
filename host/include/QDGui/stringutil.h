#pragma once

#include <QDGui/qdguiglobal.h>

#include <QString>

namespace Korvane::Util::String {

/// \a bytes in the largest of B, KB, MB, GB and TB (steps of 1024) that leaves at least 1, as a number in printf
/// format \a format, a blank and the unit: "1.50 MB". \a format holds exactly one conversion of a double (such as
/// "%2.2f") with text around it; anything else is taken as "%.2f".
QDGUI_EXPORT QString formatFileSize(quint64 bytes, const char *format);

} // namespace Korvane::Util::String
