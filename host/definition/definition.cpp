#include "definition/check.h"
#include "definition/check_references.h"
#include "definition/files.h"
#include "definition/reporter.h"

#include <kestrona/host/definition.h>

#include <algorithm>

namespace Kestrona::Host {

namespace {

ParseResult Parse(const std::string& path, const std::optional<std::string_view>& bytes, const FileReader& reader,
                  const ParseOptions& options) {
    ParseResult result;
    Language::Reporter reporter;
    Language::ParseContext context{result.definition, reporter, reader, false, {}, {}, {}};
    if (bytes) {
        Language::ParseFile(context, *bytes, path);
        Language::CheckDefinition(result.definition, reporter);
        if (options.check_references) {
            Language::CheckReferences(result.definition, reporter);
        }
    } else {
        context.unreadable = true;
        result.definition.files.push_back(path);
        reporter.Error({}, {"definition cannot be read", "'" + path + "'", "a file that can be read", ""});
    }
    result.unreadable = context.unreadable;
    result.diagnostics = reporter.Take(result.definition.files);
    return result;
}

} // namespace

std::string Diagnostic::ToString() const {
    return file + ":" + std::to_string(line) + ":" + std::to_string(column) +
           (severity == Severity::Error ? ": error: " : ": warning: ") + text;
}

bool ParseResult::HasErrors() const {
    return std::any_of(diagnostics.begin(), diagnostics.end(),
                       [](const Diagnostic& diagnostic) { return diagnostic.severity == Severity::Error; });
}

ParseResult ParseDefinition(std::string_view text, const std::string& file_name, const FileReader& reader,
                            const ParseOptions& options) {
    return Parse(file_name, text, reader, options);
}

ParseResult ParseDefinitionFile(const std::string& path, const FileReader& reader, const ParseOptions& options) {
    const auto bytes = reader ? reader(path) : std::nullopt;
    return Parse(path, bytes ? std::optional<std::string_view>(*bytes) : std::nullopt, reader, options);
}

} // namespace Kestrona::Host
