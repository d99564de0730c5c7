#pragma once

#include <cstdint>

namespace Kestrona {

// Whether the hooks for records that come and go are called for this format: it holds the orders of the sequencer, and
// the sequencer is the program that runs.
bool HasSequencerHooks(std::int32_t format);

} // namespace Kestrona
