// Marks what leaves the foundation's shared libraries.
#pragma once

#if defined(_WIN32)
#define KEL_SYMBOL_EXPORT __declspec(dllexport)
#define KEL_SYMBOL_IMPORT __declspec(dllimport)
#else
#define KEL_SYMBOL_EXPORT __attribute__((visibility("default")))
#define KEL_SYMBOL_IMPORT __attribute__((visibility("default")))
#endif

#if defined(KEL_FOUNDATION_BUILD)
#define KEL_FOUNDATION_EXPORT KEL_SYMBOL_EXPORT
#else
#define KEL_FOUNDATION_EXPORT KEL_SYMBOL_IMPORT
#endif

#if defined(KEL_XML_BUILD)
#define KEL_XML_EXPORT KEL_SYMBOL_EXPORT
#else
#define KEL_XML_EXPORT KEL_SYMBOL_IMPORT
#endif
