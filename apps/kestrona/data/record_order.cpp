#include "data/record_order.h"

#include "data/cell_text.h"
#include "data/field_names.h"
#include "encryption.h"

#include <kestrona/classes.h>
#include <kestrona/column.h>
#include <kestrona/record_search.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <array>
#include <memory>
#include <string_view>
#include <utility>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IColumn;
using Data::MemoryResident::IMemoryResidentData;
using Data::MemoryResident::MemoryResidentData;
using Data::MemoryResident::SortDetails;

constexpr std::array<std::pair<std::string_view, bool>, 2> kDirections{{{":asc", true}, {":desc", false}}};

/// A field that is called by the whole text, its direction included, comes first.
SortDetails ReadEntry(IMemoryResidentData& store, std::int32_t format, std::string_view text) {
    if (const std::int32_t field = FieldNamed(store, format, text); field >= 0) {
        return {field, true};
    }
    for (const auto& [ending, ascending] : kDirections) {
        if (text.ends_with(ending)) {
            return {FieldNamed(store, format, text.substr(0, text.size() - ending.size())), ascending};
        }
    }
    return {};
}

} // namespace

std::optional<RecordOrder> RecordOrder::Parse(MemoryResidentData& store, std::int32_t format,
                                              const std::vector<std::string>& texts, bool group_families,
                                              Problem& problem) {
    RecordOrder order;
    for (const std::string& text : texts) {
        const SortDetails entry = ReadEntry(store, format, text);
        if (entry.field < 0 || !HasCells(store, format, entry.field)) {
            problem = {Code::BadOrder, fmt::format("'{}' names no field of {} that records can be sorted by", text,
                                                   ToUtf8(store.GetDbName(format)))};
            return std::nullopt;
        }
        if (IsLocked(store, format, entry.field)) {
            problem = {Code::NoKey, fmt::format("'{}' is encrypted, and there is no key", text)};
            return std::nullopt;
        }
        order.details_.push_back(entry);
    }
    if (group_families && FindFirstColumnWithClassification(store, format, Classes::kFamily) < 0) {
        problem = {Code::BadOrder,
                   fmt::format("{} has no families: none of its fields is a FAMILY", ToUtf8(store.GetDbName(format))),
                   "Leave out --group-family."};
        return std::nullopt;
    }
    if (group_families || !texts.empty()) {
        order.store_ = &store;
        order.format_ = format;
        order.group_families_ = group_families;
    }
    return order;
}

void RecordOrder::Arrange(std::vector<std::int32_t>& records) const {
    if (store_ == nullptr) {
        return;
    }
    const std::unique_ptr<IColumn<double>> sequence(KSDLL_CreateDisplaySequenceColumn());
    if (details_.empty()) {
        KSDLL_ParentSort(*store_, format_, nullptr, sequence.get());
    } else {
        std::vector<SortDetails> details = details_;
        KSDLL_MulticolumnSort(*store_, format_, details, group_families_, false, sequence.get());
    }
    // The places are 0, 1, 2 and so on, so that each record can go to its own.
    constexpr std::int32_t kLeftOut = -1;
    std::vector<std::int32_t> arranged(static_cast<std::size_t>(store_->GetCurrentDbSize(format_)), kLeftOut);
    for (const std::int32_t record : records) {
        const auto place = static_cast<std::size_t>(sequence->GetValue(record));
        if (place >= arranged.size() || arranged[place] != kLeftOut) {
            return; // families that have no column of values are not sorted
        }
        arranged[place] = record;
    }
    std::erase(arranged, kLeftOut);
    records = std::move(arranged);
}

} // namespace Kestrona::Tool
