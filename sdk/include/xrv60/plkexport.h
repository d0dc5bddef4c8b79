#pragma once

#if defined(_WIN32)
#if defined(XRV60_BUILD)
#define PLK_EXPORT __declspec(dllexport)
#else
#define PLK_EXPORT __declspec(dllimport)
#endif
#else
#define PLK_EXPORT __attribute__((visibility("default")))
#endif
