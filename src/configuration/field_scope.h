#pragma once

#include "configuration/reference.h"
#include "configuration/reference_lookup.h"
#include "configuration/resolution.h"
#include "platform/format_text.h"

#include <kestrona/store.h>
#include <kestrona/types.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace Kestrona::Configuration {

// The field whose classification string is being resolved: what the steps of the two passes read, write and report.
//
// Steps answer whether the pass goes on. Whatever here returns false or -1 for a failure has reported it.
class FieldScope {
public:
    // Requires: a field of the store.
    FieldScope(Resolution& resolution, std::int32_t format, std::int32_t field);

    [[nodiscard]] Data::MemoryResident::MemoryResidentData& Store() const { return resolution_.store; }

    [[nodiscard]] Resolution& Pass() const { return resolution_; }

    [[nodiscard]] std::int32_t Format() const { return place_.format; }

    [[nodiscard]] std::int32_t Field() const { return place_.field; }

    [[nodiscard]] std::wstring FormatName() const;
    [[nodiscard]] std::wstring FieldName() const;

    // The classification string as it is by now.
    [[nodiscard]] const std::wstring& Text() const { return info_.current.classString; }

    void SetText(const std::wstring& text);

    [[nodiscard]] bool Holds(std::wstring_view keyword) const { return Text().find(keyword) != std::wstring::npos; }

    // The first other field whose classification string holds the text; -1 and -1 for none.
    [[nodiscard]] TableColumn FindClassification(const std::wstring& text) const;

    [[nodiscard]] bool Is(Class c) const;
    void Add(Class c) const;
    [[nodiscard]] std::uint32_t Type() const;
    [[nodiscard]] bool IsMatrix() const;
    [[nodiscard]] std::int32_t Slot(std::int32_t slot) const;
    void SetSlot(std::int32_t slot, std::int32_t value) const;
    void SetSlots(std::int32_t format_slot, std::int32_t field_slot, TableColumn target) const;

    // Sets table and source.
    void ReferTo(std::int32_t table, std::int32_t source) const;

    // Scans from the first place where the keyword stands. False when it stands nowhere or nothing was read.
    bool ScanField(std::wstring_view keyword, std::wstring_view pattern, Reference& out) const;
    bool ScanFormatField(std::wstring_view keyword, std::wstring_view pattern, Reference& out) const;

    // Looks up a format and its field.
    bool Find(const Reference& reference, const ContextText& context, Datasets datasets, TableColumn& target) const;
    // Looks up a field of this format.
    [[nodiscard]] std::int32_t FindHere(const Reference& reference, const ContextText& context) const;
    // Looks up a field of any format.
    [[nodiscard]] std::int32_t FindIn(std::int32_t format, const Reference& reference,
                                      const ContextText& context) const;

    // The host's text of this number, or a text of the module's own, filled with the names of format and field.
    [[nodiscard]] ContextText Context(std::int32_t message) const;
    [[nodiscard]] ContextText Context(const wchar_t* text) const;

    // Fills a text with the names of format and field, and more arguments where the text asks for them.
    template <typename... Arguments>
    [[nodiscard]] std::wstring Fill(std::wstring_view text, const Arguments&... more) const {
        return Platform::FormatText(text, FormatName(), FieldName(), more...);
    }

    // Shows the text, filled likewise. Always false.
    bool Refuse(const std::wstring& text) const;
    // The same with the name of another field of this format as third argument.
    bool Refuse(const std::wstring& text, std::int32_t other_field) const;

private:
    Resolution& resolution_;
    TableColumn place_;
    const Data::MemoryResident::field_info& info_;
};

} // namespace Kestrona::Configuration
