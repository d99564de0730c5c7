#include "persistence/audit_file.h"
#include "platform/format_text.h"

#include <kestrona/audit_log.h>
#include <kestrona/built_in_tables.h>
#include <kestrona/classes.h>
#include <kestrona/dates.h>
#include <kestrona/host_settings.h>
#include <kestrona/matrices.h>
#include <kestrona/process.h>
#include <kestrona/services.h>
#include <kestrona/value_text.h>

#include <algorithm>
#include <array>
#include <string>

namespace Kestrona::Persistence {

namespace {

using Data::MemoryResident::IMemoryResidentData;
using Platform::FormatText;

constexpr std::int32_t kNewRecord = -1;
constexpr std::int32_t kMsgUser = 0x4a67;
constexpr std::size_t kLongestUser = 512;
constexpr double kTimeRuns = -1.0;
constexpr const wchar_t* kEmptyDefault = L" ";

constexpr const wchar_t* kCreated = L"Record %li in format '%s' Created by '%s' at %s\n";
constexpr const wchar_t* kChanged = L"Record %li in format '%s' Changed by '%s' at %s\n";
constexpr const wchar_t* kSetCell = L"\tField '%s' Set to '%s'\n";
constexpr const wchar_t* kSetList = L"\tField '%s' Set to %s\n";
constexpr const wchar_t* kChangedCell = L"\tField '%s' Changed from '%s' to '%s'\n";
constexpr const wchar_t* kChangedList = L"\tField '%s' Changed from %s\n";
constexpr const wchar_t* kChangedListTo = L"\tTo\n";
constexpr const wchar_t* kElement = L"\t\t%s\n";

// Sets a time that stands still aside: an entry tells the time of the machine, also during a simulation.
class MachineTime {
public:
    MachineTime() : fixed_(KSDLL_GetDoubleSv(kSvFixedNow)) { KSDLL_SetDoubleSv(kSvFixedNow, kTimeRuns); }

    MachineTime(const MachineTime&) = delete;
    MachineTime& operator=(const MachineTime&) = delete;

    ~MachineTime() { KSDLL_SetDoubleSv(kSvFixedNow, fixed_); }

private:
    double fixed_;
};

std::wstring UserName() {
    std::array<wchar_t, kLongestUser> name{};
    MessageManager::getInstance()->GetMessageText(kMsgUser, name.data(), name.size());
    name.back() = L'\0'; // a host may have filled all of it
    return name.data();
}

// What a text shows: the zeros that decryption leaves behind it do not belong to it.
std::wstring UpToZero(std::wstring text) {
    text.resize(std::min(text.find(L'\0'), text.size()));
    return text;
}

bool HasShortYear() {
    constexpr std::int32_t kShortDate = 8;
    std::int32_t length = 0;
    GetFormatInformation(nullptr, &length);
    return length == kShortDate;
}

std::wstring TimeText() {
    const MachineTime machine_time;
    return KSDLL_TStringFromOADate(KSDLL_KestronaTime(), IncludeSecondsGlobally(), HasShortYear());
}

// One comparison of two records, or of a record and the defaults.
class Entry {
public:
    Entry(IMemoryResidentData& store, std::int32_t format, std::int32_t old_record, std::int32_t record)
        : store_(store),
          format_(format),
          old_record_(old_record),
          record_(record) {}

    // The lines of the entry, none when nothing changed.
    std::wstring Text() {
        std::wstring text;
        for (std::int32_t field = 0; field < store_.GetDbFields(format_); ++field) {
            if (HasChanged(field)) {
                text += text.empty() ? Heading() : std::wstring();
                text += IsMatrix(field) ? ListLines(field) : CellLine(field);
            }
        }
        return text;
    }

private:
    [[nodiscard]] bool IsNew() const { return old_record_ == kNewRecord; }

    [[nodiscard]] bool IsMatrix(std::int32_t field) const {
        return (store_.GetDbType(format_, field) & TypeBit::kMatrix) != 0;
    }

    [[nodiscard]] bool HasChanged(std::int32_t field) const {
        if (IsMatrix(field)) {
            return store_.ClassDefined(format_, field, Classes::kList) && ListHasChanged(field);
        }
        if ((store_.GetDbType(format_, field) & TypeBit::kFreeString) != 0) {
            return false;
        }
        return store_.ClassDefined(format_, field, Classes::kFreeFormat) ? TextHasChanged(field)
                                                                         : NumberHasChanged(field);
    }

    [[nodiscard]] bool NumberHasChanged(std::int32_t field) const {
        const double former =
            old_record_ < 0 ? store_.GetDbDefaultValue(format_, field) : store_.GetDbValue(format_, field, old_record_);
        return store_.GetDbValue(format_, field, record_) != former;
    }

    [[nodiscard]] bool TextHasChanged(std::int32_t field) const {
        if (old_record_ >= 0) {
            return store_.GetDbString(format_, field, record_) != store_.GetDbString(format_, field, old_record_);
        }
        const std::wstring default_text = KSDLL_GetDefaultFreeFormatStringValue(store_, format_, field);
        return store_.GetDbString(format_, field, record_) != (default_text.empty() ? kEmptyDefault : default_text);
    }

    [[nodiscard]] std::int32_t ListSize(std::int32_t field, std::int32_t record) const {
        return KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(store_, format_, field, record));
    }

    [[nodiscard]] double Element(std::int32_t field, std::int32_t record, std::int32_t index) const {
        return KSDLL_GetMatrixValue(store_, format_, field, record, static_cast<std::uint32_t>(index));
    }

    [[nodiscard]] bool ListHasChanged(std::int32_t field) const {
        const std::int32_t size = ListSize(field, record_);
        if (IsNew()) {
            return size > 0;
        }
        if (size != ListSize(field, old_record_)) {
            return true;
        }
        for (std::int32_t index = 0; index < size; ++index) {
            if (Element(field, record_, index) != Element(field, old_record_, index)) {
                return true;
            }
        }
        return false;
    }

    [[nodiscard]] std::wstring Heading() const {
        return FormatText(IsNew() ? kCreated : kChanged, record_ + 1, store_.GetDbName(format_), UserName(),
                          TimeText());
    }

    [[nodiscard]] std::wstring CellLine(std::int32_t field) const {
        const std::wstring name = store_.GetColumnName(format_, field);
        const std::wstring text = CellText(format_, field, record_);
        if (IsNew()) {
            return FormatText(kSetCell, name, text);
        }
        return FormatText(kChangedCell, name, CellText(format_, field, old_record_), text);
    }

    [[nodiscard]] std::wstring CellText(std::int32_t format, std::int32_t field, std::int32_t record) const {
        return UpToZero(KSDLL_FieldToTString(store_, format, field, record));
    }

    [[nodiscard]] std::wstring ListLines(std::int32_t field) const {
        const std::wstring name = store_.GetColumnName(format_, field);
        if (IsNew()) {
            return FormatText(kSetList, name, L"") + ElementLines(field, record_);
        }
        return FormatText(kChangedList, name, L"") + ElementLines(field, old_record_) + kChangedListTo +
               ElementLines(field, record_);
    }

    [[nodiscard]] std::wstring ElementLines(std::int32_t field, std::int32_t record) const {
        const std::int32_t table = store_.GetDbTable(format_, field);
        const std::int32_t source = store_.GetDbSource(format_, field);
        std::wstring lines;
        for (std::int32_t index = 0; index < ListSize(field, record); ++index) {
            lines += FormatText(kElement, ElementText(table, source, Element(field, record, index)));
        }
        return lines;
    }

    // A key that no record has shows what a record that was never written would.
    [[nodiscard]] std::wstring ElementText(std::int32_t table, std::int32_t source, double key) const {
        const std::int32_t record = store_.LookupKeyRecord(table, key);
        if (record >= 0) {
            return CellText(table, source, record);
        }
        if (store_.ClassDefined(table, source, Classes::kFreeFormat)) {
            return KSDLL_GetDefaultFreeFormatStringValue(store_, table, source);
        }
        return KSDLL_ValueToTString(store_, table, source, record, store_.GetDbDefaultValue(table, source), -1);
    }

    IMemoryResidentData& store_;
    std::int32_t format_;
    std::int32_t old_record_;
    std::int32_t record_;
};

} // namespace

} // namespace Kestrona::Persistence

void KSDLL_WriteLog(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                    std::int32_t old_record, std::int32_t record) {
    if (!Kestrona::IsAuditLogEnabled()) {
        return;
    }
    const std::wstring text = Kestrona::Persistence::Entry(store, format, old_record, record).Text();
    Kestrona::Persistence::AppendToAuditFile(text);
}
