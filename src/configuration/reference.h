#pragma once

#include <kestrona/classification_parsers.h>

#include <cstddef>
#include <string>

namespace Kestrona::Configuration {

// What a keyword names, and where in the classification string the keyword stands.
struct Reference {
    std::wstring format;
    std::wstring field;
    std::size_t position = 0;
};

// What a match of the parser names. Requires: `match` matched.
[[nodiscard]] Reference ReferenceOf(const Parsers::TableFieldClassificationParser& parser,
                                    const Parsers::ClassificationMatch& match);
// Likewise; the two values are the format and the field.
[[nodiscard]] Reference ReferenceOf(const Parsers::TwoKeyClassificationParser& parser,
                                    const Parsers::ClassificationMatch& match);

// Finds the first match of a keyword that names a field of its own format. False, and `out` unchanged, for none.
[[nodiscard]] bool FindFieldReference(const Parsers::OneKeyClassificationParser& parser, const std::wstring& text,
                                      Reference& out);

} // namespace Kestrona::Configuration
