#include "configuration/definition_fixture.h"

#include <kestrona/classes.h>
#include <kestrona/process.h>
#include <kestrona/unicode.h>

#include <ostream>
#include <utility>

namespace Kestrona::ConfigurationTest {

using Data::MemoryResident::field_info;

namespace {

// Texts with another number of arguments than two.
const std::map<std::int32_t, int> kArgumentCounts = {
    {21001, 0}, {21003, 1}, {21005, 1}, {21007, 3}, {21018, 0}, {21019, 0}, {21021, 0}, {21022, 0},
    {21023, 1}, {21024, 0}, {21026, 3}, {21028, 1}, {21031, 1}, {21032, 1}, {21035, 1}, {21036, 1},
    {21039, 1}, {21059, 0}, {21060, 0}, {21061, 0}, {21062, 0}, {21069, 1}, {21084, 0}, {21086, 1},
    {21087, 1}, {21088, 0}, {21089, 0}, {21096, 1}, {21103, 0}, {21508, 0}, {17147, 0}};

class CountedMessages : public Fixtures::RecordingMessages {
public:
    std::wstring GetMessage(std::int32_t id) override;
};

Fixtures::RecordingMessages* InstallCountedMessages() {
    auto* const messages = new CountedMessages();
    MessageManager::setInstance(messages);
    return messages;
}

std::wstring CountedMessages::GetMessage(std::int32_t id) {
    if (const auto own = texts.find(id); own != texts.end()) {
        return own->second;
    }
    const auto count = kArgumentCounts.find(id);
    std::wstring text = L"<" + std::to_wstring(id);
    for (int i = 0; i < (count == kArgumentCounts.end() ? 2 : count->second); ++i) {
        text += L"|%s";
    }
    return text + L">";
}

void AddNumbers(MemoryResidentData& store, std::int32_t format, std::int32_t field, const std::wstring& at,
                Snapshot& out) {
    const auto add = [&](const std::wstring& name, std::int32_t value) {
        out[at + name] = std::to_wstring(value);
    };
    add(L"table", store.GetDbTable(format, field));
    add(L"source", store.GetDbSource(format, field));
    add(L"tableY", store.GetDbTableY(format, field));
    add(L"sourceY", store.GetDbSourceY(format, field));
    add(L"sourceS", store.GetDbSourceS(format, field));
    add(L"related", store.GetDbRelated(format, field));
    add(L"relatedY", store.GetDbRelatedY(format, field));
    add(L"matrixField", store.GetFieldInfo(format, field)->matrixField);
    add(L"parentSort", store.GetParentSortEnabled(format, field) ? 1 : 0);
    for (std::int32_t slot = 0; slot < kDataSlots; ++slot) {
        add(L"[" + std::to_wstring(slot) + L"]", store.GetDbData(format, field, slot));
    }
}

void AddClasses(MemoryResidentData& store, std::int32_t format, std::int32_t field, const std::wstring& at,
                Snapshot& out) {
    for (std::int32_t word = 0; word < kClassWords; ++word) {
        for (std::uint32_t mask = 1; mask != 0; mask <<= 1U) {
            if ((store.GetDbClass(format, field, word) & mask) != 0) {
                out[at + L"+" + std::to_wstring(word) + L":" + std::to_wstring(mask)] = L"";
            }
        }
    }
}

void AddTexts(MemoryResidentData& store, std::int32_t format, std::int32_t field, const std::wstring& at,
              Snapshot& out) {
    const field_info& info = *store.GetFieldInfo(format, field);
    const auto add = [&](const wchar_t* name, const std::wstring& text) {
        if (!text.empty()) {
            out[at + name] = text;
        }
    };
    add(L"text", info.current.classString);
    add(L"default", std::to_wstring(info.defaultValue));
    add(L"xLabel", info.matrixXLabel ? info.matrixXLabel.get() : L"");
    add(L"yLabel", info.matrixYLabel ? info.matrixYLabel.get() : L"");
}

} // namespace

Snapshot TakeSnapshot(MemoryResidentData& store) {
    Snapshot out;
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
            const std::wstring at = store.GetDbName(format) + (L"." + store.GetColumnName(format, field)) + L".";
            AddNumbers(store, format, field, at, out);
            AddClasses(store, format, field, at, out);
            AddTexts(store, format, field, at, out);
        }
    }
    return out;
}

std::wstring Differences(const Snapshot& before, const Snapshot& after) {
    std::wstring text;
    for (const auto& [name, value] : after) {
        const auto former = before.find(name);
        if (former == before.end() || former->second != value) {
            text += (text.empty() ? L"" : L" ") + name + (value.empty() ? L"" : L"=" + value);
        }
    }
    return text;
}

DefinitionFixture::DefinitionFixture()
    : log_(&Fixtures::InstallRecordingLogger()),
      messages_(InstallCountedMessages()),
      owned_store_(Data::MemoryResident::CreateMemoryResidentData()),
      store_(*owned_store_) {
    ExecutionState::Instance().set_IsRunningHeadless(true);
}

std::int32_t DefinitionFixture::Add(const std::wstring& name, const std::vector<Fixtures::Field>& fields,
                                    std::int32_t key) {
    const std::int32_t format = Fixtures::AddFormat(store_, name, fields, key);
    for (std::int32_t field = 0; field < store_.GetDbFields(format); ++field) {
        store_.SetDbSourceY(format, field, -1);
        store_.SetDbRelated(format, field, -1);
        store_.SetDbRelatedY(format, field, -1);
        for (const std::int32_t slot : {DataSlot::kSwitchField, DataSlot::kLookupFormat, DataSlot::kLookupField}) {
            store_.SetDbData(format, field, slot, -1);
        }
    }
    return format;
}

void DefinitionFixture::SetExtension(std::int32_t format, const wchar_t* extension) {
    store_.SetDbExtension(format, KSDLL_AddText(extension));
}

void DefinitionFixture::SetParent(std::int32_t format, std::int32_t parent) {
    store_.SetAssociatedTable(format, KSDLL_AddText(store_.GetDbName(parent)), false);
    store_.AddChildTable(parent, format);
}

std::wstring DefinitionFixture::Changes(bool (*pass)(MemoryResidentData&), const wchar_t* other) {
    const std::wstring own = L"Orders.";
    const Snapshot before = TakeSnapshot(store_);
    succeeded_ = pass(store_);
    Snapshot after = TakeSnapshot(store_);
    std::erase_if(after,
                  [&](const auto& item) { return !item.first.starts_with(own) && !item.first.starts_with(other); });
    std::wstring changes = Differences(before, after);
    for (std::size_t at = changes.find(own); at != std::wstring::npos; at = changes.find(own)) {
        changes.erase(at, own.size());
    }
    return changes;
}

std::wstring DefinitionFixture::Boxes() const {
    std::wstring text;
    for (const Fixtures::RecordingMessages::Box& box : messages_->boxes) {
        text += (text.empty() ? L"" : L"\n") + box.text;
    }
    return text;
}

void PrintTo(const KeywordCase& each, std::ostream* out) {
    *out << ToUtf8(each.x.classification);
}

Fixtures::Field Matrix(const std::wstring& name, const std::wstring& classification, std::vector<Class> classes) {
    return {.name = name, .type = TypeBit::kMatrix, .classes = std::move(classes), .classification = classification};
}

Fixtures::Field Real(const std::wstring& name, const std::wstring& classification, std::vector<Class> classes) {
    return {.name = name, .classes = std::move(classes), .classification = classification};
}

} // namespace Kestrona::ConfigurationTest
