#pragma once

#if defined(SOFTD3D11_STATIC)
#define SOFTD3D11_API
#elif defined(_WIN32)
#if defined(SOFTD3D11_BUILDING)
#define SOFTD3D11_API __declspec(dllexport)
#else
#define SOFTD3D11_API __declspec(dllimport)
#endif
#else
#define SOFTD3D11_API __attribute__((visibility("default")))
#endif
