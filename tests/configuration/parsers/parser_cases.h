#pragma once

#include "platform/regex_search.h"

#include <kestrona/classification_parsers.h>

#include <memory>
#include <string>
#include <vector>

namespace Kestrona::ParsersTest {

// How the groups of a pattern become values.
enum class Layout {
    One,        // the first key takes group 1 when there is one
    Either,     // the first key takes group 1, or group 2
    Two,        // groups 1 and 2, both needed
    Source,     // groups 2 and 3; group 1 must be empty
    Format,     // group 2 or ".2"; group 1 under the second key
    Expression, // group 1, which must not be blank
};

// A patterned keyword: its parser, and the pattern and keys that the parser must work by. Written apart from the
// parsers' own list, so that each checks the other. Fuzz target and benchmarks go by this list as well.
struct ParserCase {
    const char* name;
    std::shared_ptr<const Configuration::Parsers::IClassificationParser> parser;
    std::wstring sample; // begins with the keyword, or with a word that may stand before it
    std::wstring pattern;
    Layout layout;
    std::wstring first_key;
    std::wstring second_key = {};
    std::shared_ptr<const Platform::WidePattern> compiled = {};
};

const std::vector<ParserCase>& ParserCases();

// What the pattern alone finds, without any search for the keyword.
Configuration::Parsers::ClassificationMatch MatchByPattern(const ParserCase& c, const std::wstring& text,
                                                           std::int32_t start);

// Every field of a match, to compare and to print.
std::string Describe(const Configuration::Parsers::ClassificationMatch& match);

} // namespace Kestrona::ParsersTest
