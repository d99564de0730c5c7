#include "encryption.h"

#include "exit_codes.h"
#include "output/message.h"

#include <kestrona/classes.h>
#include <kestrona/encryption.h>
#include <kestrona/expression_tree.h>
#include <kestrona/host/encryption_key.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>
#include <sys/resource.h>

#include <cstdio>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;
using Encryption::EncryptionService;

/// Keeps the first encrypted field that an expression names.
class EncryptedFieldFinder : public Expressions::Visitor {
public:
    explicit EncryptedFieldFinder(IMemoryResidentData& store) : store_(store) {}

    void VisitFieldReference(Expressions::FieldReference& reference) override {
        if (name_.empty() && IsEncrypted(store_, reference.format, reference.field)) {
            name_ = store_.GetColumnName(reference.format, reference.field);
        }
    }

    [[nodiscard]] std::string Name() const { return ToUtf8(name_); }

private:
    IMemoryResidentData& store_;
    std::wstring name_;
};

bool HasKey() {
    return EncryptionService::Instance()->get_FullyEnabled();
}

} // namespace

void KeepSecretsOutOfCores() {
    rlimit limit{};
    if (getrlimit(RLIMIT_CORE, &limit) == 0) {
        limit.rlim_cur = 0;
        setrlimit(RLIMIT_CORE, &limit);
    }
}

int SetUpKey(const KeyOptions& options) {
    KeepSecretsOutOfCores();
    const Host::KeyResult result = Host::SetUpEncryption({options.file, true, options.ask});
    if (!result.error.empty()) {
        TellError(Code::UnusableKey, "{}", result.error);
        return kExitKey;
    }
    return kExitGood;
}

int RequireKey(const KeyOptions& options) {
    const int code = SetUpKey(options);
    if (code == kExitGood && !HasKey()) {
        TellError(Code::NoKey, "there is no key");
        return kExitKey;
    }
    return code;
}

bool IsEncrypted(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return store.ClassDefined(format, field, Classes::kEncrypted);
}

bool IsLocked(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return IsEncrypted(store, format, field) && !HasKey();
}

std::wstring EncryptedCell(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record) {
    std::wstring text = WithoutZeros(store.GetDbString(format, field, record));
    return text.empty() || !IsLocked(store, format, field) ? text : FromUtf8(kEncryptedPlaceholder);
}

std::optional<Problem> WhyUnreadable(IMemoryResidentData& store, INativeExpression& expression, bool yields_text) {
    EncryptedFieldFinder finder(store);
    if (auto* const root = dynamic_cast<Expressions::Expression*>(&expression)) {
        root->Accept(finder);
    }
    const std::string name = finder.Name();
    if (name.empty() || (HasKey() && yields_text)) {
        return std::nullopt;
    }
    if (!HasKey()) {
        return Problem{Code::NoKey, fmt::format("names the encrypted field '{}', and there is no key", name)};
    }
    return Problem{Code::EncryptedNumber,
                   fmt::format("makes a number of the encrypted field '{}', which is for texts", name),
                   fmt::format("Compare it with --where '{}=TEXT'.", name)};
}

} // namespace Kestrona::Tool
