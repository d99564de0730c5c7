#include "data/reference_import.h"

#include "data/reference_texts.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <map>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

constexpr std::int32_t kLongestChain = 64;

struct PendingReference {
    const ImportedFile* file;
    const PendingCell* cell;
    std::int32_t chain;
};

/// The number of references that lead to the text which the field is shown by.
std::int32_t ChainLength(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    std::int32_t length = 0;
    for (auto target = TargetOf(store, format, field); target && length < kLongestChain; ++length) {
        target = TargetOf(store, target->format, target->field);
    }
    return length;
}

/// The cells in an order in which those that others are shown by come first.
std::vector<PendingReference> InOrder(IMemoryResidentData& store, const std::vector<ImportedFile>& files) {
    std::map<std::pair<std::int32_t, std::int32_t>, std::int32_t> chains;
    std::vector<PendingReference> pending;
    for (const auto& [format, file] : LastFiles(files)) {
        for (const PendingCell& cell : file->references) {
            const auto [chain, is_new] = chains.try_emplace({format, cell.field});
            if (is_new) {
                chain->second = ChainLength(store, format, cell.field);
            }
            pending.push_back({file, &cell, chain->second});
        }
    }
    std::ranges::stable_sort(pending, {}, &PendingReference::chain);
    return pending;
}

} // namespace

std::vector<Rejection> ResolveReferences(IMemoryResidentData& store, const std::vector<ImportedFile>& files) {
    std::vector<Rejection> rejections;
    ReferenceTexts texts(store);
    for (const auto& [file, cell, chain] : InOrder(store, files)) {
        std::string problem;
        if (const auto key = texts.Key(file->format, cell->field, cell->text, problem)) {
            store.SetDbValue(file->format, cell->field, cell->record, *key);
        } else {
            rejections.push_back({file->file,
                                  cell->line,
                                  ToUtf8(store.GetColumnName(file->format, cell->field)),
                                  cell->text,
                                  {Code::UnknownReference, problem}});
        }
    }
    return rejections;
}

} // namespace Kestrona::Tool
