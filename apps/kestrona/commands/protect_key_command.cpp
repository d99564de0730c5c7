#include "commands/key_commands.h"
#include "exit_codes.h"
#include "output/message.h"
#include "output/secret_file.h"
#include "output/text_output.h"

#include <kestrona/encryption.h>
#include <kestrona/host/encryption_key.h>
#include <kestrona/unicode.h>

#include <unistd.h>

#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace Kestrona::Tool {
namespace {

Host::TypedSecret AskTwice() {
    Host::TypedSecret first = Host::AskForSecret("Pass phrase: ");
    if (!first.error.empty()) {
        return first;
    }
    Host::TypedSecret second = Host::AskForSecret("Once more: ");
    if (second.error.empty() && first.text.Text() != second.text.Text()) {
        second.error = "the two pass phrases differ";
    }
    return second;
}

int TellFile(const std::string& path, const Problem& problem) {
    TellError(problem.code, "'{}' {}", path, problem.what);
    return kExitUnreadableInput;
}

/// Whether to refuse before anybody types; the writing itself never replaces a file either.
bool IsInTheWay(const ProtectKeyOptions& options) {
    std::error_code error;
    return !options.file.empty() && !options.force &&
           std::filesystem::exists(std::filesystem::symlink_status(options.file, error));
}

} // namespace

int RunProtectKey(const ProtectKeyOptions& options) {
    KeepSecretsOutOfCores();
    if (IsInTheWay(options)) {
        return TellFile(options.file, FileInTheWay());
    }
    const Host::TypedSecret phrase = isatty(STDIN_FILENO) != 0 ? AskTwice() : Host::ReadSecretLine(STDIN_FILENO);
    if (!phrase.error.empty()) {
        TellError(Code::UnusableKey, "{}", phrase.error);
        return kExitKey;
    }
    std::string content;
    try {
        content = ToUtf8(Encryption::DataProtection().Protect(phrase.text.Text())) + '\n';
    } catch (const Encryption::DataProtectionException& failure) {
        TellError(Code::UnusableKey, "the pass phrase cannot be protected for this user: {}", failure.what());
        return kExitKey;
    }
    if (options.file.empty()) {
        return WriteText(content, {});
    }
    const std::optional<Problem> problem = WriteSecretFile(content, options.file, options.force);
    return problem ? TellFile(options.file, *problem) : int{kExitGood};
}

} // namespace Kestrona::Tool
