#include "store/record_snapshot.h"

#include <kestrona/matrices.h>

#include <sstream>

namespace Kestrona::Fixtures {

using namespace Data::MemoryResident;

namespace {

void DescribeMatrix(std::ostream& out, IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                    std::int32_t record) {
    const std::int32_t size = KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(store, format, field, record));
    out << '[';
    for (std::int32_t i = 0; i < size; ++i) {
        out << KSDLL_GetMatrixValue(store, format, field, record, static_cast<std::uint32_t>(i)) << ' ';
    }
    out << ']';
}

void DescribeRow(std::ostream& out, IMemoryResidentData& store, std::int32_t format, std::int32_t record) {
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        const field_info& info = *store.GetFieldInfo(format, field);
        out << ' ' << field << ':';
        if (info.matrixColumn != nullptr) {
            DescribeMatrix(out, store, format, field, record);
        } else if (info.column != nullptr) {
            out << info.column->GetValue(record);
        }
        if (info.stringColumn != nullptr) {
            for (const wchar_t character : info.stringColumn->GetValue(record)) {
                out << '\'' << static_cast<std::int32_t>(character);
            }
        }
    }
    out << " update:" << store.GetDbUpdate(format, record) << '\n';
}

} // namespace

std::string DescribeRecords(IMemoryResidentData& store, std::int32_t format) {
    std::ostringstream out;
    for (std::int32_t record = 0; record < store.GetCurrentDbSize(format); ++record) {
        out << record;
        DescribeRow(out, store, format, record);
    }
    return out.str();
}

std::string DescribeIdentities(IMemoryResidentData& store, std::int32_t format) {
    std::ostringstream out;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        const IColumn<std::int32_t>* const ids = store.GetFieldInfo(format, field)->matrixColumn;
        for (std::int32_t record = 0; ids != nullptr && record < store.GetCurrentDbSize(format); ++record) {
            out << ids->GetValue(record) << ' ';
        }
        out << (ids != nullptr ? ids->GetValue(KSDLL_GetScratchRecord()) : 0) << '\n';
    }
    DescribeRow(out, store, format, KSDLL_GetScratchRecord());
    return out.str();
}

std::string DescribeChanges(IMemoryResidentData& store, std::int32_t format) {
    const formats_info& info = *store.GetFormatInfo(format);
    std::ostringstream out;
    out << "changed " << info.changed << " timestamp " << info.timestamp << " records";
    for (const auto& [record, changed] : info.changedRecords.Entries()) {
        out << ' ' << record << (changed ? "" : "?");
    }
    out << " erased";
    for (const auto& [key, flag] : info.erasedKeys) {
        out << ' ' << key;
    }
    return out.str();
}

} // namespace Kestrona::Fixtures
