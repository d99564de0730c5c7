#include "lint/check_definition.h"

#include "data/definition_reader.h"
#include "lint/resolution_place.h"
#include "lint/rules.h"
#include "output/host_message.h"

#include <kestrona/definition_load.h>
#include <kestrona/host/default_host.h>
#include <kestrona/host/expression_excerpt.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace Kestrona::Tool::Lint {
namespace {

using Data::MemoryResident::MemoryResidentData;

Host::DefaultHostOptions QuietOptions() {
    Host::DefaultHostOptions options;
    options.output = {};
    return options;
}

// The lines of a message as one line.
std::string OneLine(const std::wstring& text) {
    std::string line = ToUtf8(text);
    std::replace(line.begin(), line.end(), '\n', ' ');
    return line;
}

Finding FromMessage(const Host::ShownMessage& shown, const Host::Definition& definition) {
    Finding finding;
    finding.rule = &kResolutionRule;
    finding.file = definition.files.front();
    const std::wstring& message = shown.text;
    finding.message = OneLine(message);
    finding.code = CodeOfMessage(ToUtf8(shown.caption.empty() ? message : shown.caption + L": " + message)).name;
    finding.excerpt = Host::ExplainParseBox(message, "    ");
    const ResolutionPlace place = FindResolutionPlace(message, definition);
    if (place.format != nullptr) {
        finding.format = ToUtf8(place.format->name);
        finding.field = place.field != nullptr ? ToUtf8(place.field->name) : std::string();
        const Host::Place& at = place.field != nullptr ? place.field->place : place.format->place;
        finding.file = definition.files[static_cast<std::size_t>(at.file)];
        finding.line = at.line;
        finding.column = at.column;
    }
    return finding;
}

// Resolves a definition that was parsed without errors; null when it cannot be resolved.
std::unique_ptr<MemoryResidentData> Resolve(const Host::Definition& definition, Host::DefaultHost& host,
                                            std::vector<Finding>& findings) {
    std::unique_ptr<MemoryResidentData> store = host.CreateStore();
    const bool resolved = Host::FillStore(definition, *store) && check_database_access(*store, false, nullptr) == 0;
    for (const Host::ShownMessage& message : host.Messages()->Shown()) {
        findings.push_back(FromMessage(message, definition));
    }
    if (!resolved && host.Messages()->Shown().empty()) {
        findings.push_back(FromMessage({L"the definition does not fit into a store", {}}, definition));
    }
    return resolved ? std::move(store) : nullptr;
}

// By file in reading order, line and column; findings of one place keep their order.
void Sort(std::vector<Finding>& findings, const std::vector<std::string>& files) {
    std::unordered_map<std::string_view, std::size_t> numbers;
    for (const std::string& file : files) {
        numbers.emplace(file, numbers.size());
    }
    const auto place = [&](const Finding& finding) {
        return std::make_tuple(numbers[finding.file], finding.line, finding.column);
    };
    std::stable_sort(findings.begin(), findings.end(),
                     [&](const Finding& a, const Finding& b) { return place(a) < place(b); });
}

} // namespace

Finding FindingOf(const Host::Diagnostic& diagnostic) {
    Finding finding;
    finding.rule = diagnostic.severity == Host::Severity::Error ? &kSyntaxRule : &kDoubtfulRule;
    finding.file = diagnostic.file;
    finding.line = diagnostic.line;
    finding.column = diagnostic.column;
    finding.message = diagnostic.text;
    return finding;
}

Report CheckDefinition(const std::string& path) {
    Report report;
    report.definition = path;
    const Host::ParseResult parsed = Host::ParseDefinitionFile(
        path, [&path](const std::string& file) { return ReadDefinition(file, file == path); });
    report.unreadable = parsed.unreadable;
    report.formats = parsed.definition.formats.size();
    for (const Host::FormatDefinition& format : parsed.definition.formats) {
        report.fields += format.fields.size();
    }
    std::transform(parsed.diagnostics.begin(), parsed.diagnostics.end(), std::back_inserter(report.findings),
                   FindingOf);
    if (!parsed.HasErrors()) { // rules on half a definition would find what is not there
        Host::DefaultHost host(QuietOptions());
        const auto store = Resolve(parsed.definition, host, report.findings);
        ApplyRules(LintSource(parsed.definition, store.get()), report.findings);
    }
    Sort(report.findings, parsed.definition.files);
    return report;
}

} // namespace Kestrona::Tool::Lint
