#include "definition/print_field.h"

#include "definition/classification.h"
#include "definition/field_types.h"
#include "definition/print_text.h"
#include "definition/unresolved.h"
#include "definition/values.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Kestrona::Host::Language {

namespace {

using Data::MemoryResident::IMemoryResidentData;

constexpr std::size_t kLineLength = 100;
constexpr std::string_view kIndent = "    ";
constexpr std::string_view kFurtherLine = "\n        | ";

// Tells -0.0 from 0.0, and takes a NaN for itself.
bool SameNumber(double left, double right) {
    return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
}

class FieldPrinter {
public:
    FieldPrinter(IMemoryResidentData& store, std::int32_t format, std::int32_t field)
        : store_(store),
          format_(format),
          field_(field),
          text_(UnresolvedClassification(store, format, field)),
          known_(UnderstandClassification(text_)),
          resolved_(BitsFromResolution(store, format, field, known_.classification.words)) {}

    std::string Print() {
        printed_ = std::string(kIndent) + "field " + PrintName(store_.GetColumnName(format_, field_));
        PrintDefault();
        PrintDialog();
        PrintLength();
        PrintBitsOfType();
        for (std::int32_t word = 0; word < kClassWords; ++word) {
            PrintBitsOfClass(word);
        }
        PrintClassification();
        return printed_ + "\n";
    }

private:
    // What reading the entry without a default would give.
    [[nodiscard]] double DefaultOfEntry() {
        FieldDefinition field;
        field.type = store_.GetDbType(format_, field_);
        for (std::int32_t word = 0; word < kClassWords; ++word) {
            field.classes[static_cast<std::size_t>(word)] = store_.GetDbClass(format_, field_, word);
        }
        return ImpliedDefault(field, store_.GetDbKey(format_) == field_);
    }

    void PrintDefault() {
        const auto* info = store_.GetFieldInfo(format_, field_);
        const double value = info == nullptr ? 0.0 : info->defaultValue;
        if (!SameNumber(value, DefaultOfEntry())) {
            printed_ += " = " + PrintValue(value);
        }
    }

    void PrintDialog() {
        const std::int16_t level = store_.GetDbDialogLevel(format_, field_);
        if (level != 0) {
            printed_ += " level " + (level == kHiddenDialogLevel ? "hidden" : std::to_string(level));
        }
        const auto read_only = static_cast<int>(store_.GetDbReadOnly(format_, field_));
        if (read_only != 0) {
            printed_ += read_only == 1 ? " readonly" : " readonly " + std::to_string(read_only);
        }
    }

    // Keywords that store a format or a field in the slot leave no place for a length.
    void PrintLength() {
        const std::int32_t length = store_.GetDbData(format_, field_, DataSlot::kMaxTextLength);
        const bool is_taken = store_.ClassDefined(format_, field_, Classes::kAssociate) ||
                              store_.ClassDefined(format_, field_, Classes::kUpdateReference);
        if (length > 0 && !is_taken) {
            printed_ += " length " + std::to_string(length);
        }
    }

    // Words alone give a field one type.
    void PrintBitsOfType() {
        const std::uint32_t type = store_.GetDbType(format_, field_);
        if (type != known_.classification.type || type == 0 || HasSeveralTypes(type)) {
            printed_ += " type " + PrintBits(type);
        }
    }

    void PrintBitsOfClass(std::int32_t word) {
        const std::uint32_t implied = known_.classification.classes[static_cast<std::size_t>(word)];
        const std::uint32_t held = store_.GetDbClass(format_, field_, word);
        const std::uint32_t added = held & ~implied & ~resolved_[static_cast<std::size_t>(word)];
        PrintChange(" set ", word, added);
        PrintChange(" clear ", word, implied & ~held);
    }

    void PrintChange(const char* option, std::int32_t word, std::uint32_t bits) {
        if (bits != 0) {
            printed_ += option + std::to_string(word) + " " + PrintBits(bits);
        }
    }

    void PrintClassification() {
        if (!known_.is_canonical || text_.empty() || !FitsUtf8(text_)) {
            printed_ += " classification " + PrintText(text_);
            return;
        }
        printed_ += " : ";
        std::size_t line_start = 0;
        for (const ClassificationWord& word : known_.classification.words) {
            AppendWord(ToUtf8(word.text), line_start);
        }
    }

    void AppendWord(const std::string& word, std::size_t& line_start) {
        if (printed_.ends_with(" : ")) {
            printed_ += word;
        } else if (printed_.size() - line_start + word.size() > kLineLength) {
            line_start = printed_.size() + 1;
            printed_ += kFurtherLine;
            printed_ += word;
        } else {
            printed_ += " | " + word;
        }
    }

    IMemoryResidentData& store_;
    std::int32_t format_;
    std::int32_t field_;
    std::wstring text_;
    KnownClassification known_;
    std::array<std::uint32_t, kClassWords> resolved_;
    std::string printed_;
};

} // namespace

std::string PrintField(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return FieldPrinter(store, format, field).Print();
}

} // namespace Kestrona::Host::Language
