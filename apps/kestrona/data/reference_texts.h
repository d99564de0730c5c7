#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

/// \file
/// From the texts that references are shown by to the keys that they hold.

namespace Kestrona::Tool {

/// The format whose records a field refers to, and the field that they are shown by.
struct ReferenceTarget {
    std::int32_t format = -1;
    std::int32_t field = -1;

    auto operator<=>(const ReferenceTarget&) const = default; // NOLINT(*-use-nullptr): misread
};

/// Returns where the references of a field, or of its list, point; nothing for a field that holds none to records.
[[nodiscard]] std::optional<ReferenceTarget> TargetOf(Data::MemoryResident::IMemoryResidentData& store,
                                                      std::int32_t format, std::int32_t field);

/// Looks up texts. The first text of a target costs a pass over its records, which must not change afterwards.
class ReferenceTexts {
public:
    /// Borrows the store.
    explicit ReferenceTexts(Data::MemoryResident::IMemoryResidentData& store) : store_(store) {}

    /// Returns the keys of the records that the field shows by this text; -1.0 for the word for an unset reference.
    /// Blanks around texts do not count. Requires: a field with a target.
    [[nodiscard]] std::vector<double> Keys(std::int32_t format, std::int32_t field, std::string_view text);

    /// Returns the one key; says through `problem` that there is none or more than one, with an empty result.
    [[nodiscard]] std::optional<double> Key(std::int32_t format, std::int32_t field, std::string_view text,
                                            std::string& problem);

private:
    using KeysByText = std::unordered_multimap<std::wstring, double>;

    [[nodiscard]] const KeysByText& TextsOf(const ReferenceTarget& target);
    [[nodiscard]] const std::wstring& UnsetText(std::int32_t format, std::int32_t field);

    Data::MemoryResident::IMemoryResidentData& store_;
    std::map<ReferenceTarget, KeysByText> texts_;
    std::map<std::pair<std::int32_t, std::int32_t>, std::wstring> unset_texts_;
};

} // namespace Kestrona::Tool
