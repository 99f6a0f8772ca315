// Marks the classes that other modules of the suite take from the DLL.
#pragma once

#if defined(_WIN32) && defined(ZOKA_BUILD)
#define ZOKA_API __declspec(dllexport)
#else
#define ZOKA_API
#endif
