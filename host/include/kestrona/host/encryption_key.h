#pragma once

#include <string>

/// \file
/// Where the pass phrase of the encryption service comes from.

namespace Kestrona::Host {

/// Environment variable that names a key file.
inline constexpr const char* kKeyFileVariable = "KESTRONA_KEY_FILE";
/// Environment variable that holds a plain pass phrase.
inline constexpr const char* kKeyVariable = "KESTRONA_KEY";

/// A text that is overwritten when it is given back. What the reading of it left elsewhere is not reached.
class SecretText {
public:
    SecretText() = default;

    /// Takes the text and overwrites what it is taken from.
    explicit SecretText(std::wstring&& text) noexcept { Take(text); }

    SecretText(const SecretText&) = delete;
    SecretText& operator=(const SecretText&) = delete;

    SecretText(SecretText&& other) noexcept { Take(other.text_); }

    SecretText& operator=(SecretText&& other) noexcept;

    ~SecretText() { Overwrite(text_); }

    [[nodiscard]] const std::wstring& Text() const { return text_; }

private:
    void Take(std::wstring& text) noexcept;
    static void Overwrite(std::wstring& text) noexcept;

    std::wstring text_;
};

/// Where to look for a key. The places are tried in the order of the members; the environment stands between them.
struct KeyRequest {
    std::string file;            ///< A key file; empty for none.
    bool use_environment = true; ///< `kKeyFileVariable`, then `kKeyVariable`, unless they are empty.
    bool ask = false;            ///< Ask at the terminal if there is no other key.
};

enum class KeySource {
    None,
    File,            ///< The file that the caller named.
    EnvironmentFile, ///< The file that the environment names.
    Environment,     ///< The phrase in the environment.
    Terminal,
};

/// A key, or what kept it from being found.
struct KeyResult {
    KeySource source = KeySource::None; ///< The place that was chosen, also when what it holds is of no use.
    std::wstring protected_key;         ///< As `DataProtection::Protect` gives it; empty without a key.
    std::string error;                  ///< What is wrong, for people; empty when nothing is.
};

/// Looks for a key and checks that this user can unprotect it. Neither a key nor an error when no place names one. The
/// first place that names one counts: when it is of no use, no other is tried.
///
/// A key file holds one line: the form that `DataProtection::Protect` gives, or a plain pass phrase in UTF-8. A file
/// with a plain phrase is refused unless it is the user's own and nobody else may read or write it. Plain phrases are
/// protected at once.
[[nodiscard]] KeyResult FindKey(const KeyRequest& request);

/// Looks for a key and hands it to the encryption service, fully enabled. Leaves the service alone without one.
///
/// Requires: before the load of a definition, so that encrypted fields get encrypted columns.
KeyResult SetUpEncryption(const KeyRequest& request);

/// A text that was typed unseen, or what kept it from being typed.
struct TypedSecret {
    SecretText text;   ///< Empty with an error.
    std::string error; ///< For people; empty when there is a text.
};

/// Asks for a line at the terminal of the process, whatever stdin is, and does not show it. An empty line, one that is
/// no UTF-8 and one of more than 4096 bytes are errors. A signal that ends the process finds the terminal as it was.
///
/// Requires: one thread at a time.
[[nodiscard]] TypedSecret AskForSecret(const std::string& prompt);

/// Reads one line from a file descriptor, under the conditions of `AskForSecret`. Reads nothing behind the line's end.
[[nodiscard]] TypedSecret ReadSecretLine(int descriptor);

} // namespace Kestrona::Host
