#include "output/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace Kestrona::Tool {
namespace {

constexpr std::uintmax_t kAll = 100;

/// The feedback has a line without a stage, since stages are texts of the message service; the sink adds what is done.
Host::TextSink SinkFor(const std::string& what) {
    if (isatty(fileno(stderr)) == 0) {
        return {};
    }
    return [what](std::string_view text) {
        const std::string line = std::string(text) + (text.ends_with("] ") ? what : "");
        std::fwrite(line.data(), 1, line.size(), stderr);
        std::fflush(stderr);
    };
}

} // namespace

Progress::Progress(const std::string& what, std::uintmax_t total) : feedback_(SinkFor(what)), total_(total) {
    feedback_.SetProgress(0); // the two seconds begin
}

void Progress::Advance(std::uintmax_t by) {
    done_ = std::min(done_ + by, total_);
    const auto percent = static_cast<std::int32_t>(total_ == 0 ? kAll : done_ * kAll / total_);
    if (percent != percent_) {
        percent_ = percent;
        feedback_.SetProgress(percent);
    }
}

} // namespace Kestrona::Tool
