#include "configuration/classification_finder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace Kestrona::Configuration {

using Data::MemoryResident::field_info;

namespace {

// A definition looks for a handful of classifications; beyond this many the searches begin at the first format.
constexpr std::size_t kMaxKnown = 64;

bool ComesBefore(TableColumn left, TableColumn right) {
    return std::pair(left.format, left.field) < std::pair(right.format, right.field);
}

} // namespace

TableColumn ClassificationFinder::Find(const std::wstring& text, TableColumn skip) {
    Known& known = Remember(text);
    TableColumn place = known.first;
    bool found = Next(place, text);
    known.first = place;
    if (found && place == skip) {
        ++place.field;
        found = Next(place, text);
    }
    return found ? place : TableColumn{};
}

void ClassificationFinder::Changed(TableColumn place, const std::wstring& text) {
    for (Known& known : known_) {
        if (ComesBefore(place, known.first) && text.find(known.text) != std::wstring::npos) {
            known.first = place;
        }
    }
}

ClassificationFinder::Known& ClassificationFinder::Remember(const std::wstring& text) {
    const auto found =
        std::find_if(known_.begin(), known_.end(), [&](const Known& known) { return known.text == text; });
    if (found != known_.end()) {
        return *found;
    }
    if (known_.size() == kMaxKnown) {
        known_.clear();
    }
    known_.push_back({text});
    return known_.back();
}

// Moves `place` on to the first field at or behind it that holds the text; behind the last format when there is none.
bool ClassificationFinder::Next(TableColumn& place, const std::wstring& text) {
    for (; place.format < store_.GetFormatCount(); place = {place.format + 1, 0}) {
        const std::int32_t fields = store_.GetDbFields(place.format);
        for (; place.field < fields; ++place.field) {
            const field_info* info = store_.GetFieldInfo(place.format, place.field);
            if (info != nullptr && info->current.classString.find(text) != std::wstring::npos) {
                return true;
            }
        }
    }
    return false;
}

} // namespace Kestrona::Configuration
