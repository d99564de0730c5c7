#include "fuzz.h"

#include <kestrona/host/translation_list.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

// The reader of filled translation lists.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto list = Kestrona::Host::ParseTranslationList(bytes, "list");
    std::size_t characters = 0;
    for (const auto& entry : list.entries) {
        characters += entry.text.size() + entry.translation.size();
    }
    Kestrona::Fuzz::Require(characters <= size && list.diagnostics.size() <= size);
    return 0;
}
