// Implements: ReadFieldDataFromFile, GetTableDataFromFile.
//
// How a field is shown, and with it the record format that it refers to, is settled once for each block; then every
// cell is read from the store. A reference costs one look-up in the index of the other format's key.
#include "persistence/data_extraction.h"

#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>
#include <kestrona/data_extraction.h>
#include <kestrona/matrices.h>
#include <kestrona/record_search.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <optional>
#include <unordered_map>

namespace Kestrona::DataExtraction {

using Configuration::Parsers::ClassificationMatch;
using Configuration::Parsers::ClassificationParser_DATABASE;
using Configuration::Parsers::ClassificationParser_FAMILY;
using Data::MemoryResident::MemoryResidentData;

namespace {

// Each parser is made once. It stands here because a static of a member function of an exported class would be
// exported.
template <typename T>
const T& Parser() {
    static const T parser;
    return parser;
}

constexpr const wchar_t* kBadDatabase = L"Unrecognised table or field name referred to by a DATABASE classification";
constexpr const wchar_t* kBadFamily = L"Unrecognised table or field name referred to by a FAMILY classification";
constexpr const wchar_t* kBetweenElements = L"             ";
constexpr const wchar_t* kNumberField = L"Number";
constexpr const wchar_t* kNumberName = L"Id";
constexpr const wchar_t* kDataSetName = L"dataset";

enum class Form {
    Display,
    Stored,
};

std::wstring NameInRow(const std::wstring& name) {
    return name == kNumberField ? kNumberName : name;
}

// Where the block of a format stands, by the format's name; nothing for a format without one.
using BlockFinder = std::function<std::optional<int>(const std::wstring&)>;

BlockFinder FirstBlockIn(const ExtractionSummary& summary) {
    return [&summary](const std::wstring& name) -> std::optional<int> {
        const auto found = std::ranges::find(summary.Tables, name, &TableExtractionSummary::get_Name);
        return found != summary.Tables.end() ? std::optional(found->get_DataOffset()) : std::nullopt;
    };
}

} // namespace

// One call: a format, whose blocks are loaded one after another, and the formats that its fields refer to.
class DataExtractReader::Extraction {
public:
    // How the cells of one field become texts.
    struct Field {
        std::int32_t number = -1;
        std::wstring name;
        std::uint32_t type = 0;
        Form form = Form::Display;
        bool is_reference = false;
        TableColumn target; // of a reference that is shown; no format where there are no records to refer to
        std::uint32_t target_type = 0;
    };

    Extraction(DataExtractReader& reader, const std::wstring& file, std::int32_t format, BlockFinder blocks)
        : reader_(reader),
          store_(reader.store_),
          file_(file),
          format_(format),
          blocks_(std::move(blocks)) {}

    // Returns the number of records. Blocks do not overlap in a sound file; a damaged directory that leads to the same
    // bytes again and again ends after as many of them as the file has.
    std::int32_t Load(int offset) {
        if (records_left_ == 0) {
            return 0;
        }
        const LoadedBlock block = reader_.LoadBlock(file_, format_, offset);
        if (!block.is_open) {
            return 0;
        }
        records_left_ = std::min(records_left_, block.file_size + kFreeRecords);
        elements_left_ = std::min(elements_left_, block.file_size + kFreeElements);
        const auto records = std::min(static_cast<std::size_t>(store_.GetCurrentDbSize(format_)), records_left_);
        records_left_ -= std::min(std::max(records, block.size), records_left_);
        return static_cast<std::int32_t>(records);
    }

    // Throws the text of a reference that leads nowhere.
    Field Describe(std::int32_t number, Form form) {
        Field field;
        field.number = number;
        field.name = store_.GetColumnName(format_, number);
        field.type = store_.GetDbType(format_, number);
        field.form = form;
        if (store_.ClassDefined(format_, number, Classes::kDatabase)) {
            field.is_reference = true;
            field.target = form == Form::Display ? DatabaseTarget(number) : TableColumn{};
        } else if (store_.ClassDefined(format_, number, ClassificationParser_FAMILY::get_Class())) {
            field.is_reference = FindFamilyTarget(number, form, field.target);
        }
        if (field.target.format >= 0) {
            store_.AddIndexToColumn(field.target.format, store_.GetDbKey(field.target.format));
            field.target_type = store_.GetDbType(field.target.format, field.target.field);
        }
        return field;
    }

    std::wstring TextOf(const Field& field, std::int32_t record) {
        if (Has(field.type, TypeBit::kMatrix)) {
            return MatrixText(field, record);
        }
        if (Has(field.type, TypeBit::kReference) && !field.is_reference) {
            return store_.GetDbString(format_, field.number, record);
        }
        return ValueText(field, store_.GetDbValue(format_, field.number, record));
    }

    // With a dataset's name, each row ends with it.
    void AppendRows(std::int32_t records, const std::vector<Field>& fields, const std::wstring& dataset,
                    ExtractedRows& rows) {
        for (std::int32_t record = 0; record < records; ++record) {
            auto& row = rows.emplace_back();
            row.reserve(fields.size() + 1);
            for (const Field& field : fields) {
                row.emplace_back(field.name, TextOf(field, record));
            }
            if (!dataset.empty()) {
                row.emplace_back(kDataSetName, dataset);
            }
        }
    }

private:
    static bool Has(std::uint32_t type, std::uint32_t bit) { return (type & bit) != 0; }

    TableColumn DatabaseTarget(std::int32_t number) {
        const ClassificationParser_DATABASE& parser = Parser<ClassificationParser_DATABASE>();
        const ClassificationMatch match = parser.MatchFirst(store_.GetDbClassString(format_, number));
        TableColumn target;
        if (!match.Matched || !reader_.LookupTableAndFieldNames(match.Values.at(parser.get_TableNameKey()),
                                                                match.Values.at(parser.get_FieldNameKey()),
                                                                &target.format, &target.field)) {
            throw kBadDatabase;
        }
        return HasRecords(target.format) ? target : TableColumn{};
    }

    bool FindFamilyTarget(std::int32_t number, Form form, TableColumn& target) {
        const ClassificationParser_FAMILY& parser = Parser<ClassificationParser_FAMILY>();
        const ClassificationMatch match = parser.MatchFirst(store_.GetDbClassString(format_, number));
        if (match.Matched && form == Form::Display &&
            !reader_.LookupTableAndFieldNames(store_.GetDbName(format_), match.Values.at(parser.get_FirstKey()),
                                              &target.format, &target.field)) {
            throw kBadFamily;
        }
        return match.Matched;
    }

    // Loads a format that is referred to, once. The one that is being read stands in the store already.
    bool HasRecords(std::int32_t target) {
        if (target == format_) {
            return true;
        }
        const auto [known, is_new] = loaded_.try_emplace(target, false);
        if (is_new) {
            const std::optional<int> offset = blocks_(store_.GetDbName(target));
            known->second = offset && reader_.LoadBlock(file_, target, *offset).is_open;
        }
        return known->second;
    }

    // A value of the field itself: a key where the field is a reference.
    std::wstring ValueText(const Field& field, double value) {
        if (field.form == Form::Stored) {
            std::wstring text;
            (void)GetRawDisplayStringFromStorageValue(value, static_cast<int>(field.type), &text);
            return text;
        }
        return field.is_reference ? TargetText(field, value) : DisplayText(value, field.type);
    }

    static std::wstring DisplayText(double value, std::uint32_t type) {
        std::wstring text = kNoValue;
        (void)GetDisplayStringFromStorageValue(value, static_cast<int>(type), &text);
        return text;
    }

    std::wstring TargetText(const Field& field, double key) {
        const auto& [format, number] = field.target;
        const std::int32_t record = key >= 0.0 && format >= 0 ? store_.LookupKeyRecord(format, key) : -1;
        if (record < 0) {
            return kNoValue;
        }
        return Has(field.target_type, TypeBit::kReference)
                   ? store_.GetDbString(format, number, record)
                   : DisplayText(store_.GetDbValue(format, number, record), field.target_type);
    }

    std::wstring MatrixText(const Field& field, std::int32_t record) {
        const std::int32_t id = KSDLL_GetDbMatrix(store_, format_, field.number, record);
        const auto size = static_cast<std::size_t>(KSDLL_GetMatrixSize(id));
        const std::size_t shown = std::min(size, elements_left_);
        elements_left_ -= shown;
        std::wstring text = shown == 0 && field.form == Form::Display ? kNoValue : L"";
        for (std::size_t index = 0; index < shown; ++index) {
            const double element = KSDLL_GetMatrixValueFromId(id, record, static_cast<std::uint32_t>(index));
            text += index > 0 ? kBetweenElements : L"";
            text += element < 0.0 && field.form == Form::Display ? kNoValue : ValueText(field, element);
        }
        return text;
    }

    DataExtractReader& reader_;
    MemoryResidentData& store_;
    const std::wstring& file_;
    std::int32_t format_;
    BlockFinder blocks_;
    std::unordered_map<std::int32_t, bool> loaded_; // whether the format has a block
    // What may still be shown: of blocks records or bytes, whichever are more, and elements of matrices.
    std::size_t records_left_ = std::numeric_limits<std::size_t>::max();
    std::size_t elements_left_ = std::numeric_limits<std::size_t>::max();
};

std::vector<std::wstring> DataExtractReader::ReadFieldDataFromFile(const std::wstring& file, const std::wstring& table,
                                                                   const std::wstring& field, int data_offset,
                                                                   int reference_data_offset) {
    std::int32_t format = -1;
    std::int32_t number = -1;
    if (!FindFormatAndField(table, field, &format, &number)) {
        return {};
    }
    Extraction extraction(*this, file, format, [&](const std::wstring&) { return reference_data_offset; });
    const std::int32_t records = extraction.Load(data_offset);
    const Extraction::Field shown = extraction.Describe(number, Form::Display);
    std::vector<std::wstring> texts;
    texts.reserve(static_cast<std::size_t>(records));
    for (std::int32_t record = 0; record < records; ++record) {
        texts.push_back(extraction.TextOf(shown, record));
    }
    return texts;
}

ExtractedRows DataExtractReader::GetTableDataFromFile(const std::wstring& file, const std::wstring& table, int offset,
                                                      const ExtractionSummary& summary) {
    const std::int32_t format = KSDLL_FindFormatImpl(store_, table.c_str());
    if (format < 0) {
        return {};
    }
    Extraction extraction(*this, file, format, FirstBlockIn(summary));
    const std::int32_t records = extraction.Load(offset);
    std::vector<Extraction::Field> fields;
    fields.reserve(static_cast<std::size_t>(std::max(store_.GetDbFields(format), 0)));
    for (std::int32_t field = 0; field < store_.GetDbFields(format); ++field) {
        fields.push_back(extraction.Describe(field, Form::Display));
    }
    ExtractedRows rows;
    extraction.AppendRows(records, fields, {}, rows);
    return rows;
}

ExtractedRows DataExtractReader::GetTableDataFromFile(const std::wstring& file, const std::wstring& table,
                                                      const ExtractionSummary& summary,
                                                      const std::vector<std::pair<std::wstring, bool>>& fields,
                                                      bool all_fields) {
    const std::int32_t format = KSDLL_FindFormatImpl(store_, table.c_str());
    if (format < 0) {
        return {};
    }
    const std::unordered_map<std::wstring, bool> chosen(fields.begin(), fields.end());
    Extraction extraction(*this, file, format, FirstBlockIn(summary));
    ExtractedRows rows;
    for (const TableExtractionSummary& block : summary.Tables) {
        if (block.get_Name() != table) {
            continue;
        }
        const std::int32_t records = extraction.Load(block.get_DataOffset());
        std::vector<Extraction::Field> taken;
        for (std::int32_t field = 0; field < store_.GetDbFields(format); ++field) {
            const auto choice = chosen.find(store_.GetColumnName(format, field));
            if (all_fields || choice != chosen.end()) {
                const bool as_stored = !all_fields && !choice->second;
                taken.push_back(extraction.Describe(field, as_stored ? Form::Stored : Form::Display));
                taken.back().name = NameInRow(taken.back().name);
            }
        }
        extraction.AppendRows(records, taken, block.get_DataSetName(), rows);
    }
    return rows;
}

} // namespace Kestrona::DataExtraction
