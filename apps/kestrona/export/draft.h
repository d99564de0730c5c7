#pragma once

#include "output/message.h"

#include <kestrona/safe_file.h>

#include <optional>
#include <string>

namespace Kestrona::Tool {

/// The file that `path` names (UTF-8), written beside it until `Publish`.
class Draft {
public:
    explicit Draft(const std::string& path);

    [[nodiscard]] std::FILE* File() const { return file_.File(); }

    /// Where another library writes, UTF-8.
    [[nodiscard]] std::string Path() const;
    /// Tells why the file could not be made or given its name.
    [[nodiscard]] std::optional<Problem> Failure() const;
    /// Gives the file its name. Returns what went wrong.
    [[nodiscard]] std::optional<Problem> Publish();

private:
    std::string path_;
    SafeFile file_;
};

} // namespace Kestrona::Tool
