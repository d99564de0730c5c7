#include "lint/resolution_place.h"

#include <algorithm>
#include <array>

namespace Kestrona::Tool::Lint {
namespace {

constexpr std::wstring_view kFormat = L"ormat '"; // the first letter may be a capital
constexpr std::array<std::wstring_view, 3> kFieldForms{L"', field '", L"' Field '", L"' field '"};

// Names may hold quotes, so the text is compared with the names instead of being cut at quotes.
template <typename Named>
const Named* StartsWithName(std::wstring_view text, const std::vector<Named>& items) {
    const Named* longest = nullptr;
    for (const Named& item : items) {
        if (text.starts_with(item.name) && text.substr(item.name.size()).starts_with(L'\'') &&
            (longest == nullptr || item.name.size() > longest->name.size())) {
            longest = &item;
        }
    }
    return longest;
}

const Host::FieldDefinition* FieldBehind(std::wstring_view text, const Host::FormatDefinition& format) {
    const std::wstring_view rest = text.substr(format.name.size());
    for (const std::wstring_view form : kFieldForms) {
        if (rest.starts_with(form)) {
            return StartsWithName(rest.substr(form.size()), format.fields);
        }
    }
    return nullptr;
}

} // namespace

ResolutionPlace FindResolutionPlace(std::wstring_view message, const Host::Definition& definition) {
    ResolutionPlace found;
    for (std::size_t at = message.find(kFormat); at != std::wstring_view::npos; at = message.find(kFormat, at + 1)) {
        const std::wstring_view text = message.substr(at + kFormat.size());
        const Host::FormatDefinition* const format = StartsWithName(text, definition.formats);
        if (format == nullptr) {
            continue;
        }
        if (const Host::FieldDefinition* const field = FieldBehind(text, *format)) {
            return {format, field};
        }
        if (found.format == nullptr) {
            found.format = format;
        }
    }
    return found;
}

} // namespace Kestrona::Tool::Lint
