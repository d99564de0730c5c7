#include "configuration/definition_fixture.h"

#include <kestrona/classes.h>
#include <kestrona/process.h>
#include <kestrona/unicode.h>

#include <utility>

namespace Kestrona::ConfigurationTest {

using Data::MemoryResident::field_info;

namespace {

constexpr const wchar_t* kOwn = L"Orders.";

// Texts with another number of arguments than two.
const std::map<std::int32_t, int> kArgumentCounts = {
    {21001, 0}, {21003, 1}, {21005, 1}, {21007, 3}, {21018, 0}, {21019, 0}, {21021, 0}, {21022, 0},
    {21023, 1}, {21024, 0}, {21026, 3}, {21028, 1}, {21031, 1}, {21032, 1}, {21035, 1}, {21036, 1},
    {21039, 1}, {21059, 0}, {21060, 0}, {21061, 0}, {21062, 0}, {21069, 1}, {21084, 0}, {21086, 1},
    {21087, 1}, {21088, 0}, {21089, 0}, {21096, 1}, {21103, 0}, {21508, 0}, {17147, 0}};

class CountedMessages : public Fixtures::RecordingMessages {
public:
    std::wstring GetMessage(std::int32_t id) override {
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
};

Fixtures::RecordingMessages* InstallCountedMessages() {
    auto* const messages = new CountedMessages();
    MessageManager::setInstance(messages);
    return messages;
}

// The entries of one field, their names behind `at`.
void Describe(const field_info& info, const std::wstring& at, Snapshot& out) {
    const std::pair<const wchar_t*, std::int32_t> numbers[] = {
        {L"table", info.table},       {L"source", info.source},           {L"tableY", info.tableY},
        {L"sourceY", info.sourceY},   {L"sourceS", info.sourceS},         {L"related", info.related},
        {L"relatedY", info.relatedY}, {L"matrixField", info.matrixField}, {L"parentSort", info.parentSortEnabled}};
    for (const auto& [name, number] : numbers) {
        out[at + name] = std::to_wstring(number);
    }
    for (std::size_t slot = 0; slot < info.data.size(); ++slot) {
        out[at + L"[" + std::to_wstring(slot) + L"]"] = std::to_wstring(info.data[slot]);
    }
    for (std::size_t word = 0; word < info.current.classWords.size(); ++word) {
        for (std::uint32_t mask = 1; mask != 0; mask <<= 1U) {
            if ((info.current.classWords[word] & mask) != 0) {
                out[at + L"+" + std::to_wstring(word) + L":" + std::to_wstring(mask)] = L"";
            }
        }
    }
    const std::pair<const wchar_t*, std::wstring> texts[] = {
        {L"text", info.current.classString},
        {L"default", std::to_wstring(info.defaultValue)},
        {L"xLabel", info.matrixXLabel ? info.matrixXLabel.get() : L""},
        {L"yLabel", info.matrixYLabel ? info.matrixYLabel.get() : L""}};
    for (const auto& [name, text] : texts) {
        if (!text.empty()) {
            out[at + name] = text;
        }
    }
}

} // namespace

Snapshot TakeSnapshot(MemoryResidentData& store) {
    Snapshot out;
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
            Describe(*store.GetFieldInfo(format, field),
                     store.GetDbName(format) + (L"." + store.GetColumnName(format, field)) + L".", out);
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
    const Snapshot before = TakeSnapshot(store_);
    succeeded_ = pass(store_);
    Snapshot after = TakeSnapshot(store_);
    std::erase_if(after,
                  [&](const auto& item) { return !item.first.starts_with(kOwn) && !item.first.starts_with(other); });
    std::wstring changes = L" " + Differences(before, after);
    for (const std::wstring own : {L" Orders.X.", L" Orders."}) {
        for (std::size_t at = changes.find(own); at != std::wstring::npos; at = changes.find(own)) {
            changes.replace(at, own.size(), L" ");
        }
    }
    return changes.substr(1);
}

std::wstring DefinitionFixture::Boxes() const {
    std::wstring text;
    for (const Fixtures::RecordingMessages::Box& box : messages_->boxes) {
        text += (text.empty() ? L"" : L"\n") + box.text;
    }
    return text;
}

void DefinitionFixture::ExpectBox(const std::wstring& text) {
    ASSERT_EQ(messages_->boxes.size(), 1U) << ToUtf8(text);
    EXPECT_EQ(messages_->boxes[0], (Fixtures::RecordingMessages::Box{text, L"Plant", kMessageStyleError}));
    messages_->boxes.clear();
}

KeywordCase::KeywordCase(const std::wstring& keyword, std::wstring outcome, std::vector<Class> classes,
                         std::vector<Fixtures::Field> behind)
    : x((keyword.starts_with(L"MATRIX | ") ? Matrix : Real)(L"X", keyword, std::move(classes))),
      expected(std::move(outcome)),
      more(std::move(behind)) {}

Fixtures::Field Matrix(const std::wstring& name, const std::wstring& classification, std::vector<Class> classes) {
    return {.name = name, .type = TypeBit::kMatrix, .classes = std::move(classes), .classification = classification};
}

Fixtures::Field Real(const std::wstring& name, const std::wstring& classification, std::vector<Class> classes) {
    return {.name = name, .classes = std::move(classes), .classification = classification};
}

} // namespace Kestrona::ConfigurationTest
