#include "export/draft.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

namespace Kestrona::Tool {

Draft::Draft(const std::string& path) : path_(path), file_(FromUtf8(path)) {}

std::string Draft::Path() const {
    return ToUtf8(file_.DraftPath());
}

std::optional<Problem> Draft::Failure() const {
    if (file_.Error().empty()) {
        return std::nullopt;
    }
    return Problem{Code::CannotWrite, fmt::format("'{}' cannot be written: {}", path_, ToUtf8(file_.Error()))};
}

std::optional<Problem> Draft::Publish() {
    return file_.Commit() ? std::nullopt : Failure();
}

} // namespace Kestrona::Tool
