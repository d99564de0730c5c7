#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace Kestrona::Host {

// Bytes of a secret in a place that never moves, overwritten at the end.
template <std::size_t kCapacity>
class SecretBuffer {
public:
    SecretBuffer() = default;
    SecretBuffer(const SecretBuffer&) = delete;
    SecretBuffer& operator=(const SecretBuffer&) = delete;

    ~SecretBuffer() { explicit_bzero(bytes_.data(), bytes_.size()); }

    [[nodiscard]] bool IsFull() const { return size_ == bytes_.size(); }

    // Where the next bytes go, and how many have room.
    [[nodiscard]] char* End() { return bytes_.data() + size_; }

    [[nodiscard]] std::size_t Room() const { return bytes_.size() - size_; }

    void Grow(std::size_t added) { size_ += added; }

    [[nodiscard]] std::string_view View() const { return {bytes_.data(), size_}; }

private:
    std::array<char, kCapacity> bytes_{};
    std::size_t size_ = 0;
};

} // namespace Kestrona::Host
