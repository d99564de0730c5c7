#include "configuration/reference_lookup.h"

#include "configuration/messages.h"
#include "configuration/report.h"
#include "platform/format_text.h"

#include <algorithm>
#include <cstddef>

namespace Kestrona::Configuration {

using Platform::FormatText;

namespace {

// Characters of a keyword that a message shows at most.
constexpr std::size_t kMaxShown = 200;

} // namespace

std::int32_t ReferenceLookup::FindReferenceField(std::int32_t format, const std::wstring& field_name,
                                                 const ContextText& context, std::wstring_view classification) {
    const std::int32_t field = names_.FieldNamed(format, field_name);
    if (field < 0) {
        Fail(FormatText(JoinedMessages({kMsgNoSuchField, kMsgNameTail}), classification, store_.GetDbName(format),
                        field_name, context()));
    }
    return field;
}

bool ReferenceLookup::FindReferenceFormatField(const std::wstring& format_name, const std::wstring& field_name,
                                               const ContextText& context, Datasets datasets,
                                               std::wstring_view classification, std::int32_t current_format,
                                               TableColumn& found) {
    for (std::int32_t format = names_.FormatNamed(format_name); format >= 0; format = names_.NextOfSameName(format)) {
        if (IsCandidate(format, datasets, current_format)) {
            found = {format, FindReferenceField(format, field_name, context, classification)};
            return found.field >= 0;
        }
    }
    return Fail(FormatText(Message(kMsgNoSuchFormat) + L"\n%s\n" + Message(kMsgNameTail), classification, context(),
                           format_name));
}

bool ReferenceLookup::IsCandidate(std::int32_t format, Datasets datasets, std::int32_t current_format) {
    if (datasets == Datasets::Any || format == current_format || !names_.HasExtension(format)) {
        return true;
    }
    const std::int32_t parent = ParentOf(current_format);
    return format == parent || store_.IsFormatChildOfParent(parent, format);
}

std::int32_t ReferenceLookup::ParentOf(std::int32_t format) {
    if (format != child_) {
        child_ = format;
        parent_ = store_.GetAssociateTableNumber(format);
    }
    return parent_;
}

std::wstring_view ClassificationAt(std::wstring_view text, std::size_t position) {
    text = text.substr(std::min(position, text.size()), kMaxShown);
    std::int32_t depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == L'(') {
            ++depth;
        } else if (text[i] == L')' && --depth <= 0) {
            return text.substr(0, i + 1);
        }
    }
    return text;
}

} // namespace Kestrona::Configuration
