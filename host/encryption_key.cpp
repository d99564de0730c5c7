// Implements: FindKey, SetUpEncryption.
#include "secret_buffer.h"

#include <kestrona/encryption.h>
#include <kestrona/host/encryption_key.h>
#include <kestrona/unicode.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace Kestrona::Host {

namespace {

using Encryption::DataProtection;
using Encryption::DataProtectionException;

constexpr mode_t kOthers = 0077;
constexpr std::size_t kLargestFile = 65536;
// The shortest protected form in base64: a form byte, a nonce, a tag and one byte more.
constexpr std::size_t kShortestProtected = 40;

using FileBuffer = SecretBuffer<kLargestFile>;

class File {
public:
    // Does not wait for the other end of a pipe.
    explicit File(const std::string& path) : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}

    File(const File&) = delete;
    File& operator=(const File&) = delete;

    ~File() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }

    [[nodiscard]] bool IsOpen() const { return descriptor_ >= 0; }

    [[nodiscard]] int Descriptor() const { return descriptor_; }

private:
    int descriptor_;
};

// Returns what is wrong, "" for nothing.
std::string ReadAll(int descriptor, FileBuffer& content) {
    for (;;) {
        if (content.IsFull()) {
            return "is too large for a key file";
        }
        const ssize_t got = read(descriptor, content.End(), content.Room());
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return std::string("cannot be read: ") + std::strerror(errno);
        }
        if (got == 0) {
            return {};
        }
        content.Grow(static_cast<std::size_t>(got));
    }
}

std::string_view WithoutLineEnd(std::string_view text) {
    for (const char end : {'\n', '\r'}) {
        if (text.ends_with(end)) {
            text.remove_suffix(1);
        }
    }
    return text;
}

bool IsBase64(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/' ||
           c == '=';
}

// Whether the text can only be meant as a protected form: base64 whose first byte is 1. One that was cut or altered is
// told and not taken for a phrase.
bool LooksProtected(std::string_view text) {
    constexpr std::string_view kSecond = "QRSTUVWXYZabcdef";
    return text.size() >= kShortestProtected && text[0] == 'A' && kSecond.find(text[1]) != std::string_view::npos &&
           std::all_of(text.begin(), text.end(), IsBase64);
}

KeyResult Refuse(KeySource source, std::string error) {
    return {source, {}, std::move(error)};
}

KeyResult ProtectPhrase(KeySource source, const std::wstring& phrase) {
    try {
        return {source, DataProtection().Protect(phrase), {}};
    } catch (const DataProtectionException& failure) {
        return Refuse(source, std::string("the pass phrase cannot be protected for this user: ") + failure.what());
    }
}

KeyResult TakeProtected(KeySource source, const std::string& name, std::string_view text) {
    KeyResult result{source, FromUtf8(text), {}};
    try {
        const SecretText phrase(DataProtection().Unprotect(result.protected_key));
        return phrase.Text().empty() ? Refuse(source, name + " holds an empty pass phrase") : result;
    } catch (const DataProtectionException& failure) {
        return Refuse(source, name + " holds a key that was altered, or that another user or machine protected (" +
                                  failure.what() + ")");
    }
}

// Returns what is wrong, "" for nothing.
std::string WhyNoPlainPhrase(const struct stat& status, std::string_view text) {
    if (text.empty()) {
        return "is empty";
    }
    if (text.find('\n') != std::string_view::npos) {
        return "holds more than one line";
    }
    if (!IsValidUtf8(text) || text.find('\0') != std::string_view::npos) {
        return "holds no text in UTF-8";
    }
    if (status.st_uid != geteuid()) {
        return "holds a plain pass phrase and belongs to another user";
    }
    if ((status.st_mode & kOthers) != 0) {
        return "holds a plain pass phrase and is open to others; chmod 600 it, or make a protected key of it";
    }
    return {};
}

KeyResult FromFile(KeySource source, const std::string& path) {
    const std::string name = "key file '" + path + "'";
    const File file(path);

    struct stat status {};

    if (!file.IsOpen() || fstat(file.Descriptor(), &status) != 0) {
        return Refuse(source, name + " cannot be opened: " + std::strerror(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        return Refuse(source, name + " is no regular file");
    }
    FileBuffer content;
    if (const std::string problem = ReadAll(file.Descriptor(), content); !problem.empty()) {
        return Refuse(source, name + " " + problem);
    }
    const std::string_view text = WithoutLineEnd(content.View());
    if (LooksProtected(text)) {
        return TakeProtected(source, name, text);
    }
    if (const std::string problem = WhyNoPlainPhrase(status, text); !problem.empty()) {
        return Refuse(source, name + " " + problem);
    }
    return ProtectPhrase(source, SecretText(FromUtf8(text)).Text());
}

KeyResult FromVariable(const char* phrase) {
    if (!IsValidUtf8(phrase)) {
        return Refuse(KeySource::Environment, std::string(kKeyVariable) + " holds no text in UTF-8");
    }
    return ProtectPhrase(KeySource::Environment, SecretText(FromUtf8(phrase)).Text());
}

KeyResult FromTerminal() {
    const TypedSecret typed = AskForSecret("Pass phrase: ");
    return typed.error.empty() ? ProtectPhrase(KeySource::Terminal, typed.text.Text())
                               : Refuse(KeySource::Terminal, typed.error);
}

// Null for a variable that is empty or not there.
const char* Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

} // namespace

KeyResult FindKey(const KeyRequest& request) {
    if (!request.file.empty()) {
        return FromFile(KeySource::File, request.file);
    }
    if (request.use_environment) {
        if (const char* const path = Variable(kKeyFileVariable)) {
            return FromFile(KeySource::EnvironmentFile, path);
        }
        if (const char* const phrase = Variable(kKeyVariable)) {
            return FromVariable(phrase);
        }
    }
    return request.ask ? FromTerminal() : KeyResult();
}

KeyResult SetUpEncryption(const KeyRequest& request) {
    KeyResult result = FindKey(request);
    if (!result.protected_key.empty()) {
        Encryption::EncryptionService::Instance()->Initialise(result.protected_key, true);
    }
    return result;
}

} // namespace Kestrona::Host
