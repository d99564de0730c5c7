#include "lint/resolution_place.h"

#include <algorithm>
#include <array>

namespace Kestrona::Tool::Lint {
namespace {

constexpr std::wstring_view kFormat = L"ormat '"; // the first letter may be a capital
constexpr std::array<std::wstring_view, 4> kFieldForms{L"', field '", L"' Field '", L"' field '", L"' and field '"};

/// A name that a text begins with, and whose it is.
template <typename Named>
struct NameMatch {
    const Named* item = nullptr;
    std::size_t length = 0;
};

// Names may hold quotes, so the text is compared with the names instead of being cut at quotes; the longest one counts.
template <typename Named>
void MatchName(std::wstring_view text, const std::wstring& name, const Named& item, NameMatch<Named>& longest) {
    if (!name.empty() && text.starts_with(name) && text.substr(name.size()).starts_with(L'\'') &&
        (longest.item == nullptr || name.size() > longest.length)) {
        longest = {&item, name.size()};
    }
}

// Some messages name a format by what users see.
NameMatch<Host::FormatDefinition> FormatAt(std::wstring_view text, const Host::Definition& definition) {
    NameMatch<Host::FormatDefinition> longest;
    for (const Host::FormatDefinition& format : definition.formats) {
        MatchName(text, format.name, format, longest);
        MatchName(text, format.display_name, format, longest);
    }
    return longest;
}

const Host::FieldDefinition* FieldBehind(std::wstring_view rest, const Host::FormatDefinition& format) {
    NameMatch<Host::FieldDefinition> longest;
    for (const std::wstring_view form : kFieldForms) {
        if (rest.starts_with(form)) {
            for (const Host::FieldDefinition& field : format.fields) {
                MatchName(rest.substr(form.size()), field.name, field, longest);
            }
        }
    }
    return longest.item;
}

} // namespace

ResolutionPlace FindResolutionPlace(std::wstring_view message, const Host::Definition& definition) {
    ResolutionPlace found;
    for (std::size_t at = message.find(kFormat); at != std::wstring_view::npos; at = message.find(kFormat, at + 1)) {
        const std::wstring_view text = message.substr(at + kFormat.size());
        const auto [format, length] = FormatAt(text, definition);
        if (format == nullptr) {
            continue;
        }
        if (const Host::FieldDefinition* const field = FieldBehind(text.substr(length), *format)) {
            return {format, field};
        }
        if (found.format == nullptr) {
            found.format = format;
        }
    }
    return found;
}

} // namespace Kestrona::Tool::Lint
