#pragma once

#include <QtGlobal>

#if defined(QDGUI_LIBRARY)
#define QDGUI_EXPORT Q_DECL_EXPORT
#else
#define QDGUI_EXPORT Q_DECL_IMPORT
#endif
