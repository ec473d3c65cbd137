// Default visibility for the types that several libraries must agree on and for the exported functions.
#pragma once

#if defined(_WIN32)
#define OMBRIX_API
#else
#define OMBRIX_API __attribute__((visibility("default")))
#endif
