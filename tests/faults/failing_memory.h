#pragma once

#include <cstdint>

// Memory that runs out on demand. A program that links the source gets all its memory through it, libraries included;
// under a sanitizer only what operator new gives, as the rest is the sanitizer's own.
namespace Kestrona::Faults {

enum class Shortage : std::uint8_t {
    Once,      // one request fails, as a large one does
    FromThenOn // all later ones fail, too
};

// Counts requests from now on and fails the one with this number; 0 fails none.
void RunOutOfMemoryAt(std::int64_t number, Shortage shortage);

// Gives memory again. Returns how many requests there were, those that failed included.
std::int64_t GiveMemoryAgain();

// Blocks that have been given and not freed; always 0 under a sanitizer, which looks for leaks itself.
std::int64_t LiveBlocks();

} // namespace Kestrona::Faults
