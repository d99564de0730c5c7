#include "commands/file_commands.h"
#include "commands/file_problems.h"
#include "commands/session.h"
#include "commands/snapshot_import.h"
#include "output/message.h"

#include <kestrona/types.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <utility>

namespace Kestrona::Tool {
namespace {

/// Says why a text of the form `NAME=FOLDER` is of no use, "" for one that is.
std::string ReadDataset(const std::string& text, const std::vector<ImportedDataset>& earlier,
                        ImportedDataset& dataset) {
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos || sign == 0 || sign + 1 == text.size()) {
        return "is not of the form NAME=FOLDER";
    }
    dataset.name = FromUtf8(text.substr(0, sign));
    dataset.folder = text.substr(sign + 1);
    if (Utf16Length(dataset.name) > kMaxDatasetName) {
        return fmt::format("has a name of more than {} characters", kMaxDatasetName);
    }
    const bool is_known = std::ranges::any_of(
        earlier, [&](const ImportedDataset& other) { return EqualIgnoringCase(other.name, dataset.name); });
    return is_known ? "gives the name a second time" : "";
}

std::optional<std::vector<ImportedDataset>> ReadDatasets(const std::vector<std::string>& texts) {
    std::vector<ImportedDataset> datasets;
    for (const std::string& text : texts) {
        ImportedDataset dataset;
        const std::string problem = ReadDataset(text, datasets, dataset);
        if (!problem.empty()) {
            TellError(Code::BadNamedValue, "--dataset '{}' {}", text, problem);
            return std::nullopt;
        }
        datasets.push_back(std::move(dataset));
    }
    return datasets;
}

} // namespace

int RunImport(const ImportOptions& options) {
    auto datasets = ReadDatasets(options.datasets);
    if (!datasets) {
        return kExitUsage;
    }
    if (const int code = RefuseSameFile(options.definition, options.target); code != kExitGood) {
        return code;
    }
    Session session;
    if (const int code = session.Load(options.definition, options.key); code != kExitGood) {
        return code;
    }
    if (session.HasRecords()) {
        TellError(Code::NeedsDefinition, Hint{"Give the definition that the snapshot was made from."},
                  "'{}' is a snapshot; import needs a definition", options.definition);
        return kExitUnreadableInput;
    }
    return SnapshotImport(session.Store(), options, std::move(*datasets)).Run();
}

} // namespace Kestrona::Tool
