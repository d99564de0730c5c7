#pragma once

#include "model/twin.h"

#include <kestrona/store.h>

#include <cstdint>
#include <deque>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace Kestrona::Model {

// Makes random changes to a store and the same to its twin.
class Mirror {
public:
    // Borrows both.
    Mirror(Data::MemoryResident::MemoryResidentData& store, const Plan& plan, unsigned seed);

    [[nodiscard]] Data::MemoryResident::MemoryResidentData& Store() const { return store_; }

    [[nodiscard]] Twin& TheTwin() { return twin_; }

    [[nodiscard]] std::mt19937& Random() { return random_; }

    std::int32_t Draw(std::int32_t bound) {
        return static_cast<std::int32_t>(random_() % static_cast<unsigned>(bound));
    }

    bool Chance(std::int32_t percent) { return Draw(100) < percent; }

    [[nodiscard]] std::int32_t Fields(std::int32_t format) const;
    [[nodiscard]] const FieldPlan& Field(std::int32_t format, std::int32_t field) const;
    // A key of the format, or a number that is none.
    double DrawKey(std::int32_t format);

    void Insert(std::int32_t format);
    void Create(std::int32_t format);
    // A record at the end with this key and the defaults, without asking what the next key is.
    void Append(std::int32_t format, double key);
    void Clear(std::int32_t format);

    // Requires here and below: the format has records.
    void Delete(std::int32_t format);
    void Write(std::int32_t format);
    void WriteField(std::int32_t format, std::int32_t field, std::int32_t record);
    void SetNumber(std::int32_t format, std::int32_t field, std::int32_t record, double value);
    void CopyRow(std::int32_t format);
    void SwapRows(std::int32_t format);
    // Copies a list into one of another format, or into another record: then it is the same list from then on.
    void CopyList(std::int32_t format);

    // What the operations themselves answered wrongly, "" for nothing.
    [[nodiscard]] const std::string& Problems() const { return problems_; }

    // The last operations, a line each.
    [[nodiscard]] std::string LastOperations() const;

    template <typename... Parts>
    void Tell(const Parts&... parts) {
        std::ostringstream line;
        (line << ... << parts);
        Remember(line.str());
    }

private:
    void Remember(std::string line);
    void Expect(bool is_right, const char* what);
    void GiveNewKey(std::int32_t format, std::int32_t record);
    void NeedKey(std::int32_t format, std::int32_t record);
    void DeleteOne(std::int32_t format);
    void DeleteMany(std::int32_t format);
    void ClearIfEmpty();
    void Fill(std::int32_t format, std::int32_t field, std::int32_t record, const std::vector<double>& cells);
    void WriteList(std::int32_t format, std::int32_t field, std::int32_t record);
    void WriteElement(std::int32_t format, std::int32_t field, std::int32_t record);
    void DeleteEntry(std::int32_t format, std::int32_t field, std::int32_t record);
    void WriteMatrix(std::int32_t format, std::int32_t field, std::int32_t record);
    void WriteText(std::int32_t format, std::int32_t field, std::int32_t record);
    void WriteNumber(std::int32_t format, std::int32_t field, std::int32_t record);

    Data::MemoryResident::MemoryResidentData& store_;
    const Plan& plan_;
    Twin twin_;
    std::mt19937 random_;
    std::deque<std::string> operations_;
    std::string problems_;
};

} // namespace Kestrona::Model
