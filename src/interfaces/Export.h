// The one export macro. The library is built with hidden visibility: what carries KESTRIN_API is
// its interface for hosts, everything else stays inside.
#pragma once

#if defined(_WIN32)
#if defined(KESTRIN_BUILD)
#define KESTRIN_API __declspec(dllexport)
#else
#define KESTRIN_API __declspec(dllimport)
#endif
#else
#define KESTRIN_API __attribute__((visibility("default")))
#endif
