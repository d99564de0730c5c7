#pragma once

namespace Kestrona::Text {

// Puts the process's switch of EnableIncludeSecondsGlobally back.
void ResetIncludeSeconds();

} // namespace Kestrona::Text
