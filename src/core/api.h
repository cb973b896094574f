// What the engine library exports.
#pragma once

#if defined(ZBTOOLS_BUILD)
#define ZBTOOLS_API __attribute__((visibility("default")))
#else
#define ZBTOOLS_API
#endif
