// Classification parsers beside the patterns that they work by, each run alone over the whole text.
//
// "keywords" is the number of parsers, or patterns, that an iteration runs. Compare the figures of one run.

#include "configuration/parsers/parser_cases.h"
#include "measure.h"

#include <kestrona/classification_readers.h>
#include <kestrona/unicode.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <regex>
#include <string>
#include <vector>

namespace Kestrona::Bench {
namespace {

using namespace Configuration::Parsers;
using ParsersTest::ParserCase;
using ParsersTest::ParserCases;

// About 200 characters as fields have them. Two, and six, of the parsers find something.
const std::wstring kFewKeywords =
    L"INTEGER | DATABASE(Operations(Number)) | INHERIT FROM PARENT | SHOW DATE | UNIQUE | "
    L"NO NEGATIVE VALUES | SECONDARY KEY | DISPLAY SEQUENCE | FORMAT(8.2) | "
    L"SELECT ALL | TIME OF NOW | NO COPY ";
const std::wstring kManyKeywords =
    L"INTEGER | DATABASE(Operations(Number)) | INHERIT FROM PARENT | HELPPOPUPID(1204) | "
    L"DIALOG FIELD NAME \"Next operation\" | SHOW DATE | FORMAT(8.2) | TIP DISPLAY(3) | "
    L"SUBSTITUTE(-1->\"none\") | UNIQUE ";

// As many keywords as a field is asked for: the patterned ones and the plain ones.
std::vector<std::shared_ptr<const IClassificationParser>> AllParsers() {
    std::vector<std::shared_ptr<const IClassificationParser>> parsers = {
        std::make_shared<ClassificationParser_AUTO_CALCULATE>(), std::make_shared<ClassificationParser_SYSTEMDB>(),
        std::make_shared<ClassificationParser_DATA_LIST>(), std::make_shared<ClassificationParser_EXCLUDE_FROM_DB>()};
    for (const ParserCase& c : ParserCases()) {
        parsers.push_back(c.parser);
    }
    return parsers;
}

std::wstring Repeated(const std::wstring& unit, std::size_t length) {
    std::wstring text;
    while (text.size() < length) {
        text += unit;
    }
    return text;
}

const ParserCase& CaseOf(const std::string& name) {
    for (const ParserCase& c : ParserCases()) {
        if (name == c.name) {
            return c;
        }
    }
    std::abort();
}

void CountKeywords(benchmark::State& state, std::size_t keywords) {
    state.counters["keywords"] = static_cast<double>(keywords);
}

void KeywordFirst(benchmark::State& state, const std::wstring& text) {
    const auto parsers = AllParsers();
    double found = 0.0;
    for (const auto& parser : parsers) {
        found += parser->IsMatch(text) ? 1.0 : 0.0;
    }
    for (auto _ : state) {
        for (const auto& parser : parsers) {
            benchmark::DoNotOptimize(parser->MatchFirst(text));
        }
    }
    CountKeywords(state, parsers.size());
    state.counters["found"] = found;
}

void PatternsAlone(benchmark::State& state, const std::wstring& text) {
    Platform::PatternMatch match;
    for (auto _ : state) {
        for (const ParserCase& c : ParserCases()) {
            benchmark::DoNotOptimize(c.compiled->Search(text, 0, match));
        }
    }
    CountKeywords(state, ParserCases().size());
}

void StandardPatternsAlone(benchmark::State& state, const std::wstring& text) {
    std::vector<std::wregex> patterns;
    for (const ParserCase& c : ParserCases()) {
        patterns.emplace_back(c.pattern);
    }
    std::wsmatch match;
    for (auto _ : state) {
        for (const std::wregex& pattern : patterns) {
            benchmark::DoNotOptimize(std::regex_search(text, match, pattern));
        }
    }
    CountKeywords(state, patterns.size());
}

// The least that a search can cost: a look for each keyword.
void FindKeywords(benchmark::State& state, const std::wstring& text) {
    std::vector<std::wstring> keywords;
    for (const ParserCase& c : ParserCases()) {
        keywords.push_back(Kestrona::FromUtf8(c.name));
    }
    for (auto _ : state) {
        for (const std::wstring& keyword : keywords) {
            benchmark::DoNotOptimize(text.find(keyword));
        }
    }
    CountKeywords(state, keywords.size());
}

void GrowthOrdinary(benchmark::State& state) {
    const auto parsers = AllParsers();
    const std::wstring text =
        Repeated(L"INTEGER | SHOW DATE | INHERIT FROM PARENT | ", static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        for (const auto& parser : parsers) {
            benchmark::DoNotOptimize(parser->IsMatch(text));
        }
    }
    state.SetComplexityN(state.range(0));
    CountKeywords(state, parsers.size());
}

// Texts of one keyword over and over that nearly matches.
void GrowthNearMisses(benchmark::State& state, const char* name, const wchar_t* unit, const wchar_t* tail) {
    const ParserCase& c = CaseOf(name);
    const std::wstring text = Repeated(unit, static_cast<std::size_t>(state.range(0))) + tail;
    for (auto _ : state) {
        benchmark::DoNotOptimize(c.parser->MatchAll(text));
    }
    state.SetComplexityN(state.range(0));
}

void GrowthEntries(benchmark::State& state) {
    const std::wstring text = Repeated(L"SUBSTITUTE(17->\"Painted red\") | ", static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(Parse_SUBSTITUTE(text));
    }
    state.SetComplexityN(state.range(0));
}

BENCHMARK_CAPTURE(KeywordFirst, none, std::wstring(200, L'|'));
BENCHMARK_CAPTURE(KeywordFirst, few, kFewKeywords);
BENCHMARK_CAPTURE(KeywordFirst, many, kManyKeywords);
BENCHMARK_CAPTURE(FindKeywords, few, kFewKeywords);
BENCHMARK_CAPTURE(FindKeywords, many, kManyKeywords);
BENCHMARK_CAPTURE(PatternsAlone, few, kFewKeywords);
BENCHMARK_CAPTURE(PatternsAlone, many, kManyKeywords);
BENCHMARK_CAPTURE(StandardPatternsAlone, few, kFewKeywords);
BENCHMARK_CAPTURE(StandardPatternsAlone, many, kManyKeywords);

void Lengths(benchmark::internal::Benchmark* benchmark) {
    benchmark->RangeMultiplier(10)->Range(1000, 100000)->Complexity();
}

BENCHMARK(GrowthOrdinary)->Apply(Lengths);
BENCHMARK(GrowthEntries)->Apply(Lengths);
BENCHMARK_CAPTURE(GrowthNearMisses, SUBSTITUTE, "SUBSTITUTE", L"SUBSTITUTE( ", L"")->Apply(Lengths);
BENCHMARK_CAPTURE(GrowthNearMisses, FORMAT, "FORMAT", L"FORMAT(", L" x)")->Apply(Lengths);
BENCHMARK_CAPTURE(GrowthNearMisses, REMOTE, "REMOTE", L"REMOTE(", L"x) y")->Apply(Lengths);

} // namespace
} // namespace Kestrona::Bench
