// Long random sequences of everything that changes a plant, on the store and on an obvious twin of it.
#include "fixtures/recording_services.h"
#include "model/plan.h"
#include "model/search_check.h"
#include "model/twin.h"

#include <kestrona/matrices.h>
#include <kestrona/records.h>
#include <kestrona/store.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <deque>
#include <memory>
#include <random>
#include <sstream>

namespace Kestrona::Model {

namespace {

using namespace Data::MemoryResident;

constexpr int kSteps = 6000;
constexpr std::size_t kLastOperations = 12;
constexpr std::int32_t kManyRecords = 16;
constexpr std::int32_t kKey = 0;

class RandomModel : public testing::TestWithParam<unsigned> {
protected:
    RandomModel() { Build(*store, plan); }

    std::int32_t Draw(std::int32_t bound) { return static_cast<std::int32_t>(random() % static_cast<unsigned>(bound)); }

    bool Chance(std::int32_t percent) { return Draw(100) < percent; }

    [[nodiscard]] std::int32_t Fields(std::int32_t format) const {
        return static_cast<std::int32_t>(plan[static_cast<std::size_t>(format)].fields.size());
    }

    [[nodiscard]] const FieldPlan& Field(std::int32_t format, std::int32_t field) const {
        return plan[static_cast<std::size_t>(format)].fields[static_cast<std::size_t>(field)];
    }

    template <typename... Parts>
    void Tell(const Parts&... parts) {
        std::ostringstream line;
        (line << ... << parts);
        operations.push_back(line.str());
        if (operations.size() > kLastOperations) {
            operations.pop_front();
        }
    }

    // A key of the format, or a number that is none.
    double DrawKey(std::int32_t format) {
        if (format == -1 || twin.Size(format) == 0 || Chance(15)) {
            return std::array{-1.0, 0.0, -0.0, 1.0, 2.0, 1.5}[static_cast<std::size_t>(Draw(6))];
        }
        return twin.Number(format, kKey, Draw(twin.Size(format)));
    }

    void SetNumber(std::int32_t format, std::int32_t field, std::int32_t record, double value) {
        Tell("SetDbValue ", format, ' ', field, ' ', record, ' ', value);
        store->SetDbValue(format, field, record, value);
        twin.SetNumber(format, field, record, value);
    }

    void GiveNewKey(std::int32_t format, std::int32_t record) {
        double key = 0.0;
        find_next_value(*store, format, kKey, &key);
        EXPECT_EQ(key, twin.NextKey(format));
        SetNumber(format, kKey, record, key);
    }

    // Most records get a key of their own.
    void NeedKey(std::int32_t format, std::int32_t record) {
        if (plan[static_cast<std::size_t>(format)].has_unique_keys || Chance(80)) {
            GiveNewKey(format, record);
        }
    }

    void Insert(std::int32_t format) {
        const std::int32_t size = twin.Size(format);
        const std::array places{0, size, Draw(size + 1), Draw(size + 1), size + 3, -1};
        const std::int32_t record = places[static_cast<std::size_t>(Draw(Chance(90) ? 4 : 6))];
        Tell("KSDLL_InsertDbItem ", format, ' ', record);
        EXPECT_EQ(KSDLL_InsertDbItem(*store, format, record), 0);
        twin.Insert(format, record);
        NeedKey(format, record < 0 || record > size ? size : record);
    }

    void Create(std::int32_t format) {
        Tell("KSDLL_CreateRecord ", format);
        const double key = twin.NextKey(format);
        const std::int32_t record = twin.Size(format);
        EXPECT_EQ(KSDLL_CreateRecord(*store, format), record);
        twin.Insert(format, record);
        twin.SetNumber(format, kKey, record, key);
    }

    void DeleteOne(std::int32_t format) {
        const std::int32_t record = Draw(twin.Size(format));
        Tell("KSDLL_DeleteDbItem ", format, ' ', record);
        KSDLL_DeleteDbItem(*store, format, record);
        twin.Delete(format, {record});
    }

    void DeleteMany(std::int32_t format) {
        const std::int32_t size = twin.Size(format);
        std::vector<std::int32_t> records;
        std::string told;
        for (std::int32_t i = Draw(size / 2 + 1); i >= 0; --i) {
            const std::int32_t record =
                Chance(90) ? Draw(size) : std::array{-1, size, 999900000}[static_cast<std::size_t>(i % 3)];
            records.insert(records.end(), Chance(20) ? 2U : 1U, record);
            told += ' ' + std::to_string(record);
        }
        Tell("KSDLL_DeleteDbItems ", format, told);
        KSDLL_DeleteDbItems(*store, format, records);
        twin.Delete(format, records);
    }

    // One matrix for a whole field has no record to stand in when the last one goes, so such a format is emptied.
    void ClearIfEmpty() {
        for (std::int32_t format = 0; format < store->GetFormatCount(); ++format) {
            const auto& fields = plan[static_cast<std::size_t>(format)].fields;
            const bool has_common =
                std::ranges::any_of(fields, [](const FieldPlan& f) { return f.Has(Classes::kCommonMatrix); });
            if (has_common && twin.Size(format) == 0) {
                Clear(format);
            }
        }
    }

    void Delete(std::int32_t format) {
        if (Chance(60)) {
            DeleteOne(format);
        } else {
            DeleteMany(format);
        }
        ClearIfEmpty();
    }

    void Clear(std::int32_t format) {
        Tell("KSDLL_Clear ", format);
        KSDLL_Clear(*store, format);
        twin.Clear(format);
    }

    void Fill(std::int32_t format, std::int32_t field, std::int32_t record, const std::vector<double>& cells) {
        const std::int32_t id =
            KSDLL_CreateMatrix(*store, static_cast<std::uint32_t>(cells.size()), format, field, record);
        for (std::uint32_t i = 0; i < cells.size(); ++i) {
            KSDLL_SetMatrixValue(id, i, cells[i]);
        }
        twin.SetCells(format, field, record, cells);
    }

    // A list and those beside it get the same length.
    void WriteList(std::int32_t format, std::int32_t field, std::int32_t record) {
        std::vector<double> keys(static_cast<std::size_t>(Draw(6)));
        std::ranges::generate(keys, [&] { return DrawKey(Field(format, field).field.table); });
        Tell("Fill list ", format, ' ', field, ' ', record, ' ', testing::PrintToString(keys));
        Fill(format, field, record, keys);
        for (std::int32_t other = 0; other < Fields(format); ++other) {
            if (Field(format, other).beside == field) {
                std::ranges::generate(keys, [&] { return DrawKey(Field(format, other).storage); });
                Fill(format, other, record, keys);
            }
        }
    }

    void WriteElement(std::int32_t format, std::int32_t field, std::int32_t record) {
        const TwinMatrix* const matrix = twin.Matrix(format, field, record);
        if (matrix != nullptr && matrix->size > 0) {
            const auto index = static_cast<std::uint32_t>(Draw(static_cast<std::int32_t>(matrix->size)));
            const double value = Draw(1000) / 8.0;
            Tell("KSDLL_SetMatrixValue ", format, ' ', field, ' ', record, ' ', index, ' ', value);
            KSDLL_SetMatrixValue(KSDLL_GetDbMatrix(*store, format, field, record), index, value);
            twin.SetCell(format, field, record, index, value);
        }
    }

    void DeleteEntry(std::int32_t format, std::int32_t field, std::int32_t record) {
        const TwinMatrix* const list = twin.Matrix(format, field, record);
        const std::int32_t index = Draw(list != nullptr ? static_cast<std::int32_t>(list->size) + 1 : 1);
        Tell("KSDLL_DeleteMatrixRow ", format, ' ', field, ' ', record, ' ', index);
        KSDLL_DeleteMatrixRow(KSDLL_GetDbMatrix(*store, format, field, record), index);
        twin.DeleteCell(format, field, record, static_cast<std::size_t>(index));
    }

    void WriteMatrix(std::int32_t format, std::int32_t field, std::int32_t record) {
        if (Field(format, field).IsAnyList() && Chance(20)) {
            DeleteEntry(format, field, record);
        } else if (Field(format, field).Has(Classes::kList)) {
            WriteList(format, field, record);
        } else if (!Field(format, field).Has(Classes::kStringStorage)) {
            WriteElement(format, field, record);
        }
    }

    void WriteText(std::int32_t format, std::int32_t field, std::int32_t record) {
        const std::wstring text(static_cast<std::size_t>(Draw(9)), static_cast<wchar_t>(L'A' + Draw(3)));
        Tell("SetDbString ", format, ' ', field, ' ', record, ' ', text.size());
        store->SetDbString(format, field, record, text);
        twin.SetText(format, field, record, text);
    }

    void WriteNumber(std::int32_t format, std::int32_t field, std::int32_t record) {
        if (field != kKey) {
            const bool refers = (Field(format, field).field.type & TypeBit::kReference) != 0;
            const std::int32_t table =
                Field(format, field).Has(Classes::kFamily) ? format : Field(format, field).field.table;
            SetNumber(format, field, record, refers ? DrawKey(table) : Draw(9) / 2.0 - 1.0);
        } else if (!plan[static_cast<std::size_t>(format)].has_unique_keys && Chance(30)) {
            SetNumber(format, field, record, DrawKey(format));
        }
    }

    void Write(std::int32_t format) {
        const std::int32_t field = Draw(Fields(format));
        const std::int32_t record = Draw(twin.Size(format));
        if (Field(format, field).IsMatrix()) {
            WriteMatrix(format, field, record);
        } else if (Field(format, field).IsText()) {
            WriteText(format, field, record);
        } else {
            WriteNumber(format, field, record);
        }
        if (Chance(10)) {
            store->SetDbUpdate(format, record, Draw(100));
            twin.SetUpdate(format, record, store->GetDbUpdate(format, record));
        }
    }

    void CopyRow(std::int32_t format) {
        const std::int32_t source = Draw(twin.Size(format));
        const std::int32_t target = Draw(twin.Size(format));
        Tell("CopyItemInfo ", source, ' ', target, ' ', format);
        store->CopyItemInfo(source, target, format);
        twin.CopyRow(format, source, target);
        NeedKey(format, target);
    }

    void SwapRows(std::int32_t format) {
        const std::int32_t record1 = Draw(twin.Size(format));
        const std::int32_t record2 = Draw(twin.Size(format));
        Tell("SwapItemInfo ", record1, ' ', record2, ' ', format);
        store->SwapItemInfo(record1, record2, format);
        twin.SwapRows(format, record1, record2);
    }

    // Copies a list into one of another format, or into another record: then it is the same list from then on.
    void CopyList(std::int32_t format) {
        const std::int32_t target_format = Draw(store->GetFormatCount());
        const std::int32_t field = Draw(Fields(format));
        const std::int32_t target_field = format == target_format ? field : Draw(Fields(target_format));
        if (twin.Size(target_format) == 0 || !Field(format, field).IsAnyList() ||
            !Field(target_format, target_field).IsAnyList()) {
            return;
        }
        const std::int32_t record = Draw(twin.Size(format));
        const std::int32_t target = Draw(twin.Size(target_format));
        Tell("CopyMatrix ", format, ' ', field, ' ', record, ' ', target_format, ' ', target_field, ' ', target);
        store->CopyMatrix(format, field, record, target_format, target_field, target);
        twin.CopyMatrix(format, field, record, target_format, target_field, target);
    }

    void Step() {
        const std::int32_t format = Draw(store->GetFormatCount());
        const std::int32_t kind = Draw(100);
        const std::int32_t size = twin.Size(format);
        if (size == 0 || (kind < 30 && size < kManyRecords)) {
            Chance(50) ? Insert(format) : Create(format);
        } else if (kind < 40) {
            Delete(format);
        } else if (kind < 75) {
            Write(format);
        } else if (kind < 80) {
            CopyRow(format);
        } else if (kind < 86) {
            SwapRows(format);
        } else if (kind < 92) {
            CopyList(format);
        } else if (kind < 93 && Chance(20)) {
            Clear(format);
        } else {
            EXPECT_EQ(FindSearchDifference(*store, twin, random), "");
        }
    }

    std::string MatrixDifference(std::int32_t format, std::int32_t field, std::int32_t record) {
        const TwinMatrix* const matrix = twin.Matrix(format, field, record);
        const std::size_t expected = matrix != nullptr ? matrix->size : 0;
        const std::int32_t size = KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(*store, format, field, record));
        if (static_cast<std::size_t>(size) != expected) {
            return "size " + std::to_string(size) + " instead of " + std::to_string(expected);
        }
        for (std::uint32_t i = 0; i < expected; ++i) {
            const double value = KSDLL_GetMatrixValue(*store, format, field, record, i);
            if (value != matrix->At(i)) {
                return "element " + std::to_string(i) + " is " + std::to_string(value) + " instead of " +
                       std::to_string(matrix->At(i));
            }
        }
        return "";
    }

    std::string CellDifference(std::int32_t format, std::int32_t field, std::int32_t record) {
        if (Field(format, field).IsMatrix()) {
            return MatrixDifference(format, field, record);
        }
        if (Field(format, field).IsText()) {
            return store->GetDbString(format, field, record) == twin.Text(format, field, record) ? "" : "another text";
        }
        const double value = store->GetDbValue(format, field, record);
        const double expected = twin.Number(format, field, record);
        return value == expected ? "" : std::to_string(value) + " instead of " + std::to_string(expected);
    }

    std::string RecordDifference(std::int32_t format, std::int32_t record) {
        for (std::int32_t field = 0; field < Fields(format); ++field) {
            if (const std::string difference = CellDifference(format, field, record); !difference.empty()) {
                return "field " + std::to_string(field) + " record " + std::to_string(record) + ": " + difference;
            }
        }
        const std::int32_t update = store->GetDbUpdate(format, record);
        return update == twin.Update(format, record) ? "" : "update number of record " + std::to_string(record);
    }

    std::string Difference() {
        for (std::int32_t format = 0; format < store->GetFormatCount(); ++format) {
            const std::string where = "format " + std::to_string(format) + ' ';
            if (store->GetCurrentDbSize(format) != twin.Size(format)) {
                return where + "has " + std::to_string(store->GetCurrentDbSize(format)) + " records instead of " +
                       std::to_string(twin.Size(format));
            }
            for (std::int32_t record = 0; record < twin.Size(format); ++record) {
                if (const std::string difference = RecordDifference(format, record); !difference.empty()) {
                    return where + difference;
                }
            }
        }
        return "";
    }

    [[nodiscard]] std::string LastOperations() const {
        std::string lines;
        for (const std::string& line : operations) {
            lines += "\n  " + line;
        }
        return lines;
    }

    const Plan& plan = ThePlan();
    Fixtures::FreshProcess process;
    Fixtures::RecordingMessages& messages = Fixtures::InstallRecordingMessages();
    std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
    Twin twin{plan};
    std::mt19937 random{GetParam()};
    std::deque<std::string> operations;
};

TEST_P(RandomModel, StoreAndTwinAgreeAfterEveryStep) {
    for (int step = 0; step < kSteps; ++step) {
        Step();
        ASSERT_EQ(Difference(), "") << "seed " << GetParam() << " step " << step << LastOperations();
        ASSERT_FALSE(HasFailure()) << "seed " << GetParam() << " step " << step << LastOperations();
    }
    // A record that does not exist is never read.
    EXPECT_TRUE(messages.boxes.empty()) << testing::PrintToString(messages.boxes.front().text);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomModel, testing::Range(1U, 9U));

} // namespace

} // namespace Kestrona::Model
