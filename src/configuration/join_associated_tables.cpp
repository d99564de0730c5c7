// Linking the formats that name an associated table to their parents.
#include "configuration/messages.h"
#include "configuration/report.h"
#include "platform/format_text.h"

#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>
#include <kestrona/definition_load.h>
#include <kestrona/definition_model.h>
#include <kestrona/process.h>
#include <kestrona/record_search.h>

#include <string>

namespace Kestrona::Configuration {

using Data::MemoryResident::MemoryResidentData;
using Platform::FormatText;

namespace {

constexpr const wchar_t* kExcludeFromDb = L"EXCLUDE FROM DB";
constexpr const wchar_t* kSeparator = L" | ";

// A format whose optional parent is absent stands alone, and what it would hold stays out of the database.
void KeepOutOfDatabase(MemoryResidentData& store, std::int32_t format) {
    store.SetAssociatedTable(format, nullptr, false);
    const std::int32_t key = store.GetDbKey(format);
    if (store.GetFieldInfo(format, key) == nullptr || store.ClassDefined(format, key, Classes::kExcludeFromDb)) {
        return;
    }
    ColumnDefinition column(store, format, key);
    column.AddClassAttribute(Classes::kExcludeFromDb);
    const std::wstring text = column.get_ClassificationString();
    column.set_ClassificationString(text.empty() ? kExcludeFromDb : text + kSeparator + kExcludeFromDb);
    column.KeepOriginal();
}

// The format with a field of this classification, -1 for none: the next one behind the child, then the first one before
// it. The child itself is no parent.
std::int32_t FindByClassification(MemoryResidentData& store, std::int32_t child, const std::wstring& classification) {
    const std::int32_t behind = KSDLL_FindClassificationInstance(store, classification, child + 1).format;
    if (behind >= 0) {
        return behind;
    }
    const std::int32_t first = KSDLL_FindClassificationInstance(store, classification).format;
    return first < child ? first : -1;
}

// Replaces a parent that is told by one of its classifications by its name. False when there is none.
bool NameParent(MemoryResidentData& store, std::int32_t format, const std::wstring& classification,
                std::int32_t& parent) {
    parent = FindByClassification(store, format, classification);
    if (parent < 0) {
        return false;
    }
    store.SetAssociatedTable(format, KSDLL_AddText(store.GetDbName(parent)),
                             store.IsAssociatedTableEligibleCommonDataset(format));
    return true;
}

bool Exists(MemoryResidentData& store, std::int32_t format) {
    return format >= 0 && format < store.GetFormatCount() && store.GetDbName(format) != nullptr;
}

// A child's data live in the file of its parent.
bool TakeOverExtension(MemoryResidentData& store, std::int32_t format, std::int32_t parent,
                       const std::wstring& caption) {
    if (const wchar_t* extension = store.GetDbExtension(parent)) {
        store.SetDbExtension(format, KSDLL_AddText(extension));
        return true;
    }
    if (store.GetDbExtension(format) == nullptr) {
        return true;
    }
    MessageManager::getInstance()->ShowMessage(
        nullptr, FormatText(Message(kMsgForeignExtension), store.GetDbName(format), store.GetDbName(parent)), caption,
        kMessageStyleError);
    return false;
}

bool JoinFormat(MemoryResidentData& store, std::int32_t format, const std::wstring& caption) {
    static const Parsers::ClassificationParser_BY_CLASSIFICATION parser;
    const std::wstring name = store.GetAssociatedTable(format);
    const Parsers::ClassificationMatch match = parser.MatchFirst(name);
    std::int32_t parent = -1;
    if (!match.Matched) {
        parent = KSDLL_FindFormat(store, name.c_str());
    } else if (!NameParent(store, format, match.Values.at(parser.get_FirstKey()), parent)) {
        KeepOutOfDatabase(store, format);
        return true;
    }
    if (!Exists(store, parent)) {
        return Fail(FormatText(Message(kMsgNoAssociatedTable), store.GetDbName(format)), caption, kMessageStyleError);
    }
    if (!store.IsFormatChildOfParent(parent, format)) {
        store.AddChildTable(parent, format);
    }
    return TakeOverExtension(store, format, parent, caption);
}

} // namespace

} // namespace Kestrona::Configuration

bool JoinAssociatedTables(Kestrona::Data::MemoryResident::MemoryResidentData& store, const std::wstring& caption) {
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        if (store.GetAssociatedTable(format) != nullptr && *store.GetAssociatedTable(format) != L'\0' &&
            !Kestrona::Configuration::JoinFormat(store, format, caption)) {
            return false;
        }
    }
    return true;
}
