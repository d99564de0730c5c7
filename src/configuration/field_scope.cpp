#include "configuration/field_scope.h"

#include "configuration/report.h"
#include "platform/scan_wide.h"

#include <kestrona/classes.h>

namespace Kestrona::Configuration {

using Platform::ScanWide;

FieldScope::FieldScope(Resolution& resolution, std::int32_t format, std::int32_t field)
    : resolution_(resolution),
      place_{format, field},
      info_(*resolution.store.GetFieldInfo(format, field)) {}

std::wstring FieldScope::FormatName() const {
    const wchar_t* name = Store().GetDbName(Format());
    return name == nullptr ? std::wstring() : std::wstring(name);
}

std::wstring FieldScope::FieldName() const {
    return Store().GetColumnName(Format(), Field());
}

void FieldScope::SetText(const std::wstring& text) {
    Store().SetDbClassString(Format(), Field(), text);
    resolution_.finder.Changed(place_, Text());
    resolution_.chain.Changed(place_);
}

TableColumn FieldScope::FindClassification(const std::wstring& text) const {
    return resolution_.finder.Find(text, place_);
}

bool FieldScope::Is(Class c) const {
    return Store().ClassDefined(Format(), Field(), c);
}

void FieldScope::Add(Class c) const {
    Store().AddDbClass(Format(), Field(), c);
}

std::uint32_t FieldScope::Type() const {
    return Store().GetDbType(Format(), Field());
}

bool FieldScope::IsMatrix() const {
    return (Type() & TypeBit::kMatrix) != 0;
}

std::int32_t FieldScope::Slot(std::int32_t slot) const {
    return Store().GetDbData(Format(), Field(), slot);
}

void FieldScope::SetSlot(std::int32_t slot, std::int32_t value) const {
    Store().SetDbData(Format(), Field(), slot, value);
}

void FieldScope::SetSlots(std::int32_t format_slot, std::int32_t field_slot, TableColumn target) const {
    SetSlot(format_slot, target.format);
    SetSlot(field_slot, target.field);
}

void FieldScope::ReferTo(std::int32_t table, std::int32_t source) const {
    Store().SetDbTable(Format(), Field(), table);
    Store().SetDbSource(Format(), Field(), source);
    resolution_.choosers.Changed(Format(), Field());
}

bool FieldScope::ScanField(std::wstring_view keyword, std::wstring_view pattern, Reference& out) const {
    out.position = Text().find(keyword);
    return out.position != std::wstring::npos &&
           ScanWide(std::wstring_view(Text()).substr(out.position), pattern, &out.field).items > 0;
}

bool FieldScope::ScanFormatField(std::wstring_view keyword, std::wstring_view pattern, Reference& out) const {
    out.position = Text().find(keyword);
    return out.position != std::wstring::npos &&
           ScanWide(std::wstring_view(Text()).substr(out.position), pattern, &out.format, &out.field).items > 0;
}

bool FieldScope::Find(const Reference& reference, const ContextText& context, Datasets datasets,
                      TableColumn& target) const {
    return resolution_.lookup.FindReferenceFormatField(reference.format, reference.field, context, datasets,
                                                       ClassificationAt(Text(), reference.position), Format(), target);
}

std::int32_t FieldScope::FindHere(const Reference& reference, const ContextText& context) const {
    return FindIn(Format(), reference, context);
}

std::int32_t FieldScope::FindIn(std::int32_t format, const Reference& reference, const ContextText& context) const {
    return resolution_.lookup.FindReferenceField(format, reference.field, context,
                                                 ClassificationAt(Text(), reference.position));
}

ContextText FieldScope::Context(std::int32_t message) const {
    return [this, message] {
        return Fill(Message(message));
    };
}

ContextText FieldScope::Context(const wchar_t* text) const {
    return [this, text] {
        return Fill(text);
    };
}

bool FieldScope::Refuse(const std::wstring& text) const {
    return Fail(Fill(text));
}

bool FieldScope::Refuse(const std::wstring& text, std::int32_t other_field) const {
    return Fail(Fill(text, Store().GetColumnName(Format(), other_field)));
}

} // namespace Kestrona::Configuration
