#pragma once

#include "output/message.h"

#include <kestrona/expression.h>
#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <optional>
#include <string>

/// \file
/// The tool's key, and what fields that are kept encrypted show with and without one.

namespace Kestrona::Tool {

struct KeyOptions {
    std::string file; ///< Key file; empty for none.
    bool ask = false; ///< Ask at the terminal if neither the file nor the environment gives a key.
};

/// What a cell with content shows without a key.
inline constexpr const char* kEncryptedPlaceholder = "(encrypted)";

/// Has the process leave no core file behind when it crashes, as it may hold keys and plain texts.
void KeepSecretsOutOfCores();

/// Looks for a key and sets the encryption service up. A key that is of no use is told on stderr and gives `kExitKey`;
/// no key at all is no fault.
int SetUpKey(const KeyOptions& options);
/// Likewise, and no key at all is told and gives `kExitKey` too.
int RequireKey(const KeyOptions& options);

/// Tells whether the definition wants the field's text encrypted.
[[nodiscard]] bool IsEncrypted(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                               std::int32_t field);
/// Tells whether it is encrypted and there is no key, so that nothing of it may be shown.
[[nodiscard]] bool IsLocked(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field);

/// The text of a cell that is kept encrypted: without the zeros behind it, or the placeholder. Requires: `IsEncrypted`.
[[nodiscard]] std::wstring EncryptedCell(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                         std::int32_t field, std::int32_t record);

/// Says why an expression cannot read the encrypted fields that it names: there is no key, or it yields a number, where
/// the zeros behind a decrypted text make every comparison with it fail. Nothing when nothing speaks against it.
[[nodiscard]] std::optional<Problem> WhyUnreadable(Data::MemoryResident::IMemoryResidentData& store,
                                                   INativeExpression& expression, bool yields_text);

/// Takes the zeros out that decryption leaves in a text.
template <typename Character>
[[nodiscard]] std::basic_string<Character> WithoutZeros(std::basic_string<Character> text) {
    std::erase(text, Character());
    return text;
}

} // namespace Kestrona::Tool
