#pragma once

#include <kestrona/owned_text.h>

namespace Kestrona::Data::MemoryResident {

// Hands a text from the C heap to its place; without a place it is freed.
inline void TakeOver(OwnedText* place, wchar_t* text) {
    OwnedText unplaced;
    (place != nullptr ? place : &unplaced)->Reset(text);
}

} // namespace Kestrona::Data::MemoryResident
