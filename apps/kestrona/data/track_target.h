#pragma once

#include "output/message.h"

#include <kestrona/tracking.h>

#include <memory>
#include <string>
#include <string_view>

/// \file
/// The field that a path is to reach, as the command line names it.

namespace Kestrona::Tool {

/// Reads `FORMAT.FIELD`, the format by its name or display name, or `class:NAME` for any field of a class. Returns what
/// is wrong through `problem` with a null result.
[[nodiscard]] std::unique_ptr<Tracking::Conditions::ITrackingCondition>
ParseTrackTarget(Data::MemoryResident::IMemoryResidentData& store, std::string_view text, Problem& problem);

} // namespace Kestrona::Tool
