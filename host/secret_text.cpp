// Implements: SecretText.
#include <kestrona/host/encryption_key.h>

#include <cstring>

namespace Kestrona::Host {

void SecretText::Overwrite(std::wstring& text) noexcept {
    text.resize(text.capacity());
    explicit_bzero(text.data(), text.size() * sizeof text[0]);
    text.clear();
}

// A short text stands inside the object and is copied by a swap, so its former place is overwritten.
void SecretText::Take(std::wstring& text) noexcept {
    text_.swap(text);
    Overwrite(text);
}

SecretText& SecretText::operator=(SecretText&& other) noexcept {
    if (this != &other) {
        Take(other.text_); // which overwrites what stood here
    }
    return *this;
}

} // namespace Kestrona::Host
