#pragma once

#include <kestrona/services.h>

#include <cstdint>
#include <initializer_list>
#include <string>

// How the definition load tells of a failure.
namespace Kestrona::Configuration {

// The host's text of a number, unfilled.
std::wstring Message(std::int32_t id);

// The texts of several numbers as one, in this order and with nothing between them.
std::wstring JoinedMessages(std::initializer_list<std::int32_t> ids);

// Shows a box with the caption of the definition load, then ends the process unless it runs headless. Always false, so
// that a step can return it.
bool Fail(const std::wstring& text);

// The same with a caption and a style of the caller's own.
bool Fail(const std::wstring& text, const std::wstring& caption, std::int32_t style);

} // namespace Kestrona::Configuration
