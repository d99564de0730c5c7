#pragma once

#include <string>

// The help file of the definition that was loaded last.
namespace Kestrona::Configuration {

// The help file name stands in the save variables as a pointer; null when there is none. A name that is set here is
// copied and belongs to this module. An empty one takes the name away.
const wchar_t* HelpFileName();
void SetHelpFileName(const std::wstring& name);

// Frees the name that was set here. One that the host has set stays.
void ForgetHelpFileName();

} // namespace Kestrona::Configuration
