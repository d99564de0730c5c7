#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <string_view>

/// \file
/// Where the default host's output goes.

namespace Kestrona::Host {

/// Takes a piece of UTF-8 output. An empty function drops it.
using TextSink = std::function<void(std::string_view text)>;

/// Writes to a stream, which is borrowed, and flushes it. Null gives an empty sink.
[[nodiscard]] TextSink StreamSink(std::FILE* stream);

/// Appends to a file, line by line. The sink owns the file, and its copies share it. Returns an empty sink when the
/// file cannot be opened.
[[nodiscard]] TextSink FileSink(const std::string& path);

} // namespace Kestrona::Host
