// Implements: making, emptying and freeing the store, its formats and its fields.
#include "store/as_store.h"
#include "store/column_ownership.h"
#include "store/format_names.h"
#include "store/growing_fields.h"
#include "store/process_services.h"
#include "store/process_state.h"

#include <kestrona/expression_parsing.h>
#include <kestrona/process.h>
#include <kestrona/store.h>
#include <kestrona/translation.h>

#include <algorithm>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr const wchar_t* kNegativeFields = L"Fields must be a positive number";

void ResetNumbers(field_info& field) {
    field.xLocation = 0;
    field.type = 0;
    field.table = 0;
    field.source = 0;
    field.sourceS = 0;
    field.related = 0;
    field.relatedY = 0;
    field.matrixField = 0;
    field.defaultValue = 0.0;
    field.tableY = 0;
    field.sourceY = 0;
    field.readOnly = ReadOnlyType::No;
    field.data.fill(0);
    field.current.dialogLevel = 0;
    field.current.classWords.fill(0);
    field.parentSortEnabled = true;
}

void ResetTexts(field_info& field) {
    field.substituteCache.reset();
    field.substitutxCache.reset();
    field.numberFormatCache.reset();
    field.stringTableNameCache.reset();
    field.hiddenInfo = {};
    field.stringTableIndex = -1;
    field.matrixXLabel.Reset();
    field.matrixYLabel.Reset();
    field.evaluateExpression.reset();
    field.hiddenIfExpression.reset();
}

} // namespace

MemoryResidentData::MemoryResidentData(IGlobalizationHelper* globalization, IDuplicateFormatHandler* duplicates,
                                       DefaultLogger* logger, BaseProgressManager* progress, CoreMessage* messages)
    : globalization_(globalization),
      duplicates_(duplicates) {
    if (logger != nullptr) {
        LogManager::setInstance(logger); // frees it together with the one before
        LogManager::setInstance(nullptr);
    }
    if (progress != nullptr) {
        ProgressManager::setInstance(progress);
    }
    if (messages != nullptr) {
        MessageManager::setInstance(messages);
    }
    // Behind what is handed over: where there is no memory for these, somebody owns that already.
    formats_.resize(static_cast<std::size_t>(kMaxFormats));
    names_ = std::make_unique<FormatNames>();
}

MemoryResidentData::~MemoryResidentData() {
    KSDLL_FreeExpressionCache(); // another store may come to stand here
    ForgetGrowingFields();
    std::ranges::for_each(formats_, FreeColumns);
}

std::unique_ptr<MemoryResidentData> CreateMemoryResidentData(IGlobalizationHelper* globalization,
                                                             IDuplicateFormatHandler* duplicates, DefaultLogger* logger,
                                                             BaseProgressManager* progress, CoreMessage* messages) {
    std::unique_ptr<IGlobalizationHelper> owned_globalization(globalization);
    std::unique_ptr<IDuplicateFormatHandler> owned_duplicates(duplicates);
    std::unique_ptr<DefaultLogger> owned_logger(logger);
    std::unique_ptr<BaseProgressManager> owned_progress(progress);
    std::unique_ptr<CoreMessage> owned_messages(messages);
    // All are given up once the store has its memory, which new asks for first.
    return std::unique_ptr<MemoryResidentData>(
        new MemoryResidentData(owned_globalization.release(), owned_duplicates.release(), owned_logger.release(),
                               owned_progress.release(), owned_messages.release()));
}

void MemoryResidentData::CreateDbFieldInfo(std::int32_t format, std::int32_t count) {
    if (count < 0) {
        throw kNegativeFields;
    }
    formats_info* const info = FindFormat(format);
    if (info == nullptr) {
        return;
    }
    for (auto field = static_cast<std::size_t>(count); field < info->fields.size(); ++field) {
        FreeFieldMemory(format, static_cast<std::int32_t>(field));
    }
    info->fields.resize(static_cast<std::size_t>(count));
    ForgetGrowingFields();
}

void MemoryResidentData::FreeFieldMemory(std::int32_t format, std::int32_t field) {
    field_info* const info = FindField(format, field);
    if (info == nullptr) {
        return;
    }
    formats_info& owner = *FindFormat(format);
    DropColumn(owner, *info, &field_info::column);
    DropColumn(owner, *info, &field_info::stringColumn);
    DropColumn(owner, *info, &field_info::matrixColumn);
    ResetNumbers(*info);
    ResetTexts(*info);
    ForgetGrowingFields();
    info->original = {}; // a snapshot of what is gone would bring the classes back to another field
    info->originalTaken = false;
}

// Puts a format back as it was constructed. The entry stays where it is: columns of other formats do not point at it,
// its own are gone.
void MemoryResidentData::ResetFormat(std::int32_t format) {
    if (formats_info* const info = FindFormat(format)) {
        FreeColumns(*info);
        *info = formats_info();
        names_->Forget();
        ForgetGrowingFields();
    }
}

void MemoryResidentData::DestroyFormat(std::int32_t format) {
    if (FindFormat(format) == nullptr) {
        return;
    }
    KSDLL_FreeExpressionCache();
    ResetFormat(format);
    for (formats_info& other : formats_) {
        std::erase(other.childTables, format);
    }
    if (format == formatCount_ - 1) {
        SetFormatCount(format);
    }
    if (duplicates_ != nullptr) {
        duplicates_->FormatDestroyed(format);
    }
}

void MemoryResidentData::InitializeFormats() {
    KSDLL_FreeExpressionCache();
    SetFormatCount(0);
    for (std::int32_t format = 0; format < kMaxFormats; ++format) {
        ResetFormat(format);
    }
}

void MemoryResidentData::FreeDbMemory() {
    FreeUserStrings();
    InitializeFormats();
    tables_.reset();
    ResetStringSubstitutions();
    FreeTranslationTable();
    FreeProcessServices();
}

} // namespace Kestrona::Data::MemoryResident

void KSDLL_CreateDbInfo(Kestrona::Data::MemoryResident::IMemoryResidentData& store) {
    store.SetFormatCount(0);
}

void KSDLL_InitializeFormats(Kestrona::Data::MemoryResident::IMemoryResidentData& store) {
    Kestrona::Data::MemoryResident::AsStore(store).InitializeFormats();
}
