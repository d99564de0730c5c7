#pragma once

#include <kestrona/export.h>

#include <cstdlib>
#include <utility>

/// \file
/// Ownership of C strings from the C heap.

namespace Kestrona {

/// Owns a wide C string that came from `malloc`, or nothing.
class OwnedText {
public:
    OwnedText() = default;

    /// Takes ownership of `text`, which may be null.
    explicit OwnedText(wchar_t* text) noexcept : text_(text) {}

    OwnedText(OwnedText&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}

    OwnedText& operator=(OwnedText&& other) noexcept {
        if (this != &other) {
            Reset(std::exchange(other.text_, nullptr));
        }
        return *this;
    }

    OwnedText(const OwnedText&) = delete;
    OwnedText& operator=(const OwnedText&) = delete;

    ~OwnedText() { std::free(text_); }

    /// Returns the text, null when there is none.
    [[nodiscard]] wchar_t* get() const noexcept { return text_; }

    explicit operator bool() const noexcept { return text_ != nullptr; }

    /// Frees the text and takes ownership of `text`. Handing back the held pointer changes nothing.
    void Reset(wchar_t* text = nullptr) noexcept {
        if (text != text_) {
            std::free(std::exchange(text_, text));
        }
    }

private:
    wchar_t* text_ = nullptr;
};

} // namespace Kestrona
