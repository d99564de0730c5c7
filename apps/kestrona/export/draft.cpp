#include "export/draft.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

namespace Kestrona::Tool {

Draft::Draft(const std::string& path) : path_(path), file_(FromUtf8(path)) {}

std::string Draft::Path() const {
    return ToUtf8(file_.DraftPath());
}

std::string Draft::Problem() const {
    return file_.Error().empty() ? std::string()
                                 : fmt::format("'{}' cannot be written: {}", path_, ToUtf8(file_.Error()));
}

std::string Draft::Publish() {
    return file_.Commit() ? std::string() : Problem();
}

} // namespace Kestrona::Tool
