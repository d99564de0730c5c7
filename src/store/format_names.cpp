// Implements: the search for a format by its name.
#include "store/format_names.h"

#include "store/growing_fields.h"

#include <kestrona/store.h>

#include <algorithm>

namespace Kestrona::Data::MemoryResident {

namespace {

bool HasName(const formats_info& format, std::wstring_view name) {
    return format.name && format.name.get() == name;
}

} // namespace

std::int32_t FormatNames::Find(std::span<const formats_info> formats, std::int32_t count, std::wstring_view name) {
    if (!valid_) {
        Build(formats, count);
    }
    auto found = numbers_.find(name);
    if (found != numbers_.end() && !HasName(formats[static_cast<std::size_t>(found->second)], name)) {
        Build(formats, count); // names are handed out for writing
        found = numbers_.find(name);
    }
    return found != numbers_.end() ? found->second : -1;
}

void FormatNames::Build(std::span<const formats_info> formats, std::int32_t count) {
    numbers_.clear();
    for (std::size_t i = 0; i < formats.size(); ++i) {
        const wchar_t* const name = formats[i].name.get();
        if (name != nullptr) {
            numbers_.try_emplace(name, static_cast<std::int32_t>(i));
        } else if (i >= static_cast<std::size_t>(count)) {
            break;
        }
    }
    valid_ = true;
}

void MemoryResidentData::SetFormatCount(std::int32_t count) {
    formatCount_ = std::clamp(count, 0, kMaxFormats);
    names_->Forget();
    ForgetGrowingFields();
}

std::int32_t MemoryResidentData::FindFormatByName(const wchar_t* name) {
    return name != nullptr ? names_->Find(formats_, formatCount_, name) : -1;
}

} // namespace Kestrona::Data::MemoryResident
