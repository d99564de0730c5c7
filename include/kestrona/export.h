#pragma once

/// \file
/// The visibility mark of everything that the shared library exports.

#if defined(__GNUC__)
#define KS_API __attribute__((visibility("default")))
#else
#define KS_API
#endif
