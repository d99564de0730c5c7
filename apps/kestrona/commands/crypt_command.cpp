#include "commands/key_commands.h"
#include "data/decrypted_text.h"
#include "exit_codes.h"
#include "output/message.h"

#include <kestrona/encryption.h>
#include <kestrona/host/encryption_key.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <optional>
#include <string_view>
#include <utility>

namespace Kestrona::Tool {
namespace {

using Encryption::EncryptionService;

/// What became of one text.
struct Outcome {
    std::string text;
    std::optional<Problem> problem = {};
    int exit_code = kExitGood;
};

Outcome EncryptOne(std::string_view text) {
    if (!IsValidUtf8(text) || text.find('\0') != std::string_view::npos) {
        return {{}, Problem{Code::NoPlainText, "is no text in UTF-8"}, kExitDamagedInput};
    }
    const Host::SecretText plain(FromUtf8(text));
    return {ToUtf8(EncryptionService::Instance()->Encrypt(plain.Text()))};
}

Outcome DecryptOne(std::string_view text) {
    if (text.find_first_not_of(" \t\r") == std::string_view::npos) {
        return {};
    }
    try {
        std::wstring decrypted = EncryptionService::Instance()->Decrypt(FromUtf8(text));
        const Host::SecretText plain(std::move(decrypted));
        if (!IsPlausible(plain.Text())) {
            return {{}, Problem{Code::WrongKey, "cannot be read: wrong key or altered value"}, kExitKey};
        }
        return {ToUtf8(WithoutZeros(plain.Text()))};
    } catch (const Encryption::EncryptionException& failure) {
        return {{}, Problem{Code::DamagedSecret, std::string("is damaged: ") + failure.what()}, kExitDamagedInput};
    }
}

/// A failed text gives an empty line, so that the lines stay in step.
int PrintOne(const Outcome& outcome, std::size_t number) {
    if (outcome.problem) {
        TellError(outcome.problem->code, "text {} {}", number, outcome.problem->what);
    }
    std::fwrite(outcome.text.data(), 1, outcome.text.size(), stdout);
    std::fputc('\n', stdout);
    return outcome.exit_code;
}

using Convert = Outcome (*)(std::string_view);

int ConvertLines(Convert convert) {
    int code = kExitGood;
    std::string line;
    for (std::size_t number = 1; std::ferror(stdout) == 0 && std::getline(std::cin, line); ++number) {
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        code = std::max(code, PrintOne(convert(line), number));
    }
    return code;
}

int ConvertAll(const CryptOptions& options, Convert convert) {
    if (const int code = RequireKey(options.key); code != kExitGood) {
        return code;
    }
    int code = kExitGood;
    try {
        if (options.texts.empty()) {
            code = ConvertLines(convert);
        }
        for (std::size_t i = 0; i < options.texts.size(); ++i) {
            code = std::max(code, PrintOne(convert(options.texts[i]), i + 1));
        }
    } catch (const Encryption::DataProtectionException& failure) {
        TellError(Code::UnusableKey, "the key cannot be read: {}", failure.what());
        return kExitKey;
    }
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 ? code : std::max<int>(code, kExitUnreadableInput);
}

} // namespace

int RunEncrypt(const CryptOptions& options) {
    return ConvertAll(options, EncryptOne);
}

int RunDecrypt(const CryptOptions& options) {
    return ConvertAll(options, DecryptOne);
}

} // namespace Kestrona::Tool
