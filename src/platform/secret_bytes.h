#pragma once

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace Kestrona::Platform {

// Overwrites memory in a way that the compiler does not leave out.
void Cleanse(void* memory, std::size_t size);

// Bytes that are overwritten when they are given back. The size is fixed, so that growing leaves no copy behind.
class SecretBytes {
public:
    explicit SecretBytes(std::size_t size = 0) : bytes_(size) {}

    explicit SecretBytes(std::span<const unsigned char> bytes) : bytes_(bytes.begin(), bytes.end()) {}

    SecretBytes(const SecretBytes&) = delete;
    SecretBytes& operator=(const SecretBytes&) = delete;
    SecretBytes(SecretBytes&&) noexcept = default;

    SecretBytes& operator=(SecretBytes&& other) noexcept {
        Cleanse(bytes_.data(), bytes_.size());
        bytes_ = std::move(other.bytes_);
        return *this;
    }

    ~SecretBytes() { Cleanse(bytes_.data(), bytes_.size()); }

    [[nodiscard]] unsigned char* Data() { return bytes_.data(); }

    [[nodiscard]] const unsigned char* Data() const { return bytes_.data(); }

    [[nodiscard]] std::size_t Size() const { return bytes_.size(); }

    [[nodiscard]] std::span<const unsigned char> View() const { return bytes_; }

private:
    std::vector<unsigned char> bytes_;
};

} // namespace Kestrona::Platform
