#pragma once

#include <kestrona/export.h>

#include <exception>
#include <string>
#include <utility>

/// \file
/// Encrypting texts with a pass phrase that is itself protected for the current user.
///
/// The formats, the derivation of the key and their limits are told in docs/security.md.

namespace Kestrona::Encryption {

/// An encryption or decryption that failed.
class KS_API EncryptionException : public std::exception {
public:
    explicit EncryptionException(std::string message) : message_(std::move(message)) {}

    [[nodiscard]] const char* what() const noexcept override { return message_.c_str(); }

private:
    std::string message_;
};

/// A protection that failed; the message is the system's.
class KS_API DataProtectionException : public std::exception {
public:
    explicit DataProtectionException(std::string message) : message_(std::move(message)) {}

    [[nodiscard]] const char* what() const noexcept override { return message_.c_str(); }

private:
    std::string message_;
};

/// Protects texts for the current user: only processes of the same user on the same machine can read them back.
///
/// The key of the user is a file of mode 0600 that is made at the first need. Threads: any number at once.
class KS_API DataProtection {
public:
    /// Returns the protected form, base64. Throws `DataProtectionException`.
    [[nodiscard]] std::wstring Protect(const std::wstring& text) const;
    /// Returns what was protected. Throws `DataProtectionException` for a text that this user did not protect.
    [[nodiscard]] std::wstring Unprotect(const std::wstring& text) const;
};

/// Turns texts into self-contained base64 texts and back.
///
/// `Encrypt` and `Decrypt` keep no state and may run in several threads at once; `Initialise` belongs to start-up. Each
/// call derives its key anew, which takes about 100 microseconds.
class KS_API EncryptionService {
public:
    /// Returns the service of the process, without a key at first.
    static EncryptionService* Instance();

    /// Sets the pass phrase, in the form that `DataProtection::Protect` gave, and whether encrypted columns may be
    /// made.
    void Initialise(const std::wstring& protected_key, bool fully_enabled);
    /// Forgets the pass phrase.
    void Initialise();

    /// Throws `EncryptionException`, or `DataProtectionException` where the pass phrase cannot be had.
    [[nodiscard]] const std::wstring Encrypt(const std::wstring& text) const;
    /// Returns the plain text; zeros stand behind it up to a multiple of 8 code units. An empty text gives an empty
    /// text. A wrong pass phrase gives a wrong text: nothing in the form tells. Throws like `Encrypt`.
    [[nodiscard]] const std::wstring Decrypt(const std::wstring& text) const;

    /// Tells whether there is a pass phrase.
    [[nodiscard]] bool get_Enabled() const { return !protected_key_.empty(); }

    /// Tells whether there is a pass phrase and encrypted columns may be made.
    [[nodiscard]] bool get_FullyEnabled() const { return get_Enabled() && fully_enabled_; }

private:
    EncryptionService() = default;

    std::wstring protected_key_;
    bool fully_enabled_ = false;
};

} // namespace Kestrona::Encryption
