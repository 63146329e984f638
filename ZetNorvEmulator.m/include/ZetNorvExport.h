// Marks what leaves the library.
#pragma once

#if defined(_WIN32)
#if defined(ZETNORV_BUILD)
#define ZETNORV_EXPORT __declspec(dllexport)
#else
#define ZETNORV_EXPORT __declspec(dllimport)
#endif
#else
#define ZETNORV_EXPORT __attribute__((visibility("default")))
#endif
