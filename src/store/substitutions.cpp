// Implements: the string substitutions.
#include <kestrona/store.h>

namespace Kestrona::Data::MemoryResident {

void MemoryResidentData::GetStringSubstitution(std::int32_t index, wchar_t** from, wchar_t** to) {
    const auto position = static_cast<std::size_t>(static_cast<std::uint32_t>(index));
    const bool found = position < substitutions_.size();
    if (from != nullptr) {
        *from = found ? substitutions_[position].from.get() : nullptr;
    }
    if (to != nullptr) {
        *to = found ? substitutions_[position].to.get() : nullptr;
    }
}

void MemoryResidentData::SetStringSubstitution(wchar_t* from, wchar_t* to) {
    StringSubstitution pair{OwnedText(from), OwnedText(to)};
    if (substitutions_.size() < static_cast<std::size_t>(kMaxStringSubstitutions)) {
        substitutions_.push_back(std::move(pair));
    }
}

void MemoryResidentData::ResetStringSubstitutions() {
    substitutions_.clear();
}

} // namespace Kestrona::Data::MemoryResident
