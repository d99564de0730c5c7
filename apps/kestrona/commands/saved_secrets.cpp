#include "commands/saved_secrets.h"

#include "data/decrypted_text.h"
#include "encryption.h"
#include "exit_codes.h"
#include "output/message.h"

#include <kestrona/encryption.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::MemoryResidentData;

/// Each look derives a key, and a wrong one shows at nearly every text.
constexpr std::int32_t kMostTextsTried = 4;

void Hide(MemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const std::wstring placeholder = FromUtf8(kEncryptedPlaceholder);
    for (std::int32_t record = 0; record < store.GetCurrentDbSize(format); ++record) {
        if (!store.GetDbString(format, field, record).empty()) {
            store.SetDbString(format, field, record, placeholder);
        }
    }
}

int Try(MemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const std::string place =
        fmt::format("{}({})", ToUtf8(store.GetDbName(format)), ToUtf8(store.GetColumnName(format, field)));
    const std::int32_t count = std::min(store.GetCurrentDbSize(format), kMostTextsTried);
    for (std::int32_t record = 0; record < count; ++record) {
        try {
            const std::wstring text = store.GetDbString(format, field, record);
            if (!text.empty() && !IsPlausible(text)) {
                TellError(Code::WrongKey, "the key is not the one that {} was saved with", place);
                return kExitKey;
            }
        } catch (const Encryption::EncryptionException& failure) {
            TellError(Code::DamagedSecret, "the encrypted text {} of {} is damaged: {}", record + 1, place,
                      failure.what());
            return kExitDamagedInput;
        }
    }
    return kExitGood;
}

} // namespace

int OpenSavedSecrets(MemoryResidentData& store) {
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
            if (!IsEncrypted(store, format, field)) {
                continue;
            }
            if (IsLocked(store, format, field)) {
                Hide(store, format, field);
            } else if (const int code = Try(store, format, field); code != kExitGood) {
                return code;
            }
        }
    }
    return kExitGood;
}

} // namespace Kestrona::Tool
