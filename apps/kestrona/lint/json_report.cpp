#include "lint/report_writer.h"
#include "lint/rules.h"
#include "output/table_writer.h"

#include <kestrona/version.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace Kestrona::Tool::Lint {
namespace {

using Json = nlohmann::ordered_json;

std::string Written(const Json& document) {
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

Json JsonFinding(const Finding& finding) {
    Json object{{"rule", finding.rule->id},
                {"code", finding.code.empty() ? finding.rule->id : std::string_view(finding.code)},
                {"severity", SeverityName(finding.rule->severity)},
                {"file", finding.file},
                {"line", nullptr},
                {"column", nullptr},
                {"format", finding.format},
                {"field", finding.field},
                {"message", finding.message},
                {"hint", finding.rule->hint}};
    if (finding.line > 0) {
        object["line"] = finding.line;
        object["column"] = finding.column;
    }
    return object;
}

// Every byte but the unreserved ones and the slash is escaped.
std::string Uri(const std::string& path) {
    std::string uri = std::filesystem::path(path).is_absolute() ? "file://" : "";
    for (const char c : path) {
        const bool is_plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                              std::string_view("-._~/").find(c) != std::string_view::npos;
        uri += is_plain ? std::string(1, c) : fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
    return uri;
}

Json SarifRules() {
    Json rules = Json::array();
    for (const RuleCheck& each : AllRules()) {
        rules.push_back({{"id", each.rule.id},
                         {"shortDescription", {{"text", each.rule.title}}},
                         {"help", {{"text", each.rule.hint}}},
                         {"defaultConfiguration", {{"level", SeverityName(each.rule.severity)}}}});
    }
    return rules;
}

std::size_t RuleIndex(const Rule& rule) {
    std::size_t index = 0;
    while (AllRules()[index].rule.id != rule.id) {
        ++index;
    }
    return index;
}

Json SarifLocation(const Finding& finding) {
    Json physical{{"artifactLocation", {{"uri", Uri(finding.file)}}}};
    if (finding.line > 0) {
        physical["region"] = {{"startLine", finding.line}, {"startColumn", finding.column}};
    }
    Json location{{"physicalLocation", std::move(physical)}};
    if (!finding.format.empty()) {
        const std::string name = finding.field.empty() ? finding.format : finding.format + "(" + finding.field + ")";
        location["logicalLocations"] =
            Json::array({{{"fullyQualifiedName", name}, {"kind", finding.field.empty() ? "type" : "member"}}});
    }
    return location;
}

Json SarifResult(const Finding& finding) {
    return {{"ruleId", finding.rule->id},
            {"ruleIndex", RuleIndex(*finding.rule)},
            {"level", SeverityName(finding.rule->severity)},
            {"message", {{"text", finding.message}}},
            {"locations", Json::array({SarifLocation(finding)})}};
}

} // namespace

std::string JsonReport(const Report& report) {
    Json findings = Json::array();
    for (const Finding& finding : report.findings) {
        findings.push_back(JsonFinding(finding));
    }
    return Written({{"version", kReportVersion},
                    {"definition", report.definition},
                    {"formats", report.formats},
                    {"fields", report.fields},
                    {"errors", report.Count(Severity::Error)},
                    {"warnings", report.Count(Severity::Warning)},
                    {"notes", report.Count(Severity::Note)},
                    {"findings", std::move(findings)}});
}

std::string SarifReport(const Report& report) {
    Json results = Json::array();
    for (const Finding& finding : report.findings) {
        results.push_back(SarifResult(finding));
    }
    const Json driver{{"name", "kestrona"}, {"version", KESTRONA_VERSION}, {"rules", SarifRules()}};
    const Json run{
        {"tool", {{"driver", driver}}}, {"columnKind", "unicodeCodePoints"}, {"results", std::move(results)}};
    return Written({{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                    {"version", "2.1.0"},
                    {"runs", Json::array({run})}});
}

} // namespace Kestrona::Tool::Lint
