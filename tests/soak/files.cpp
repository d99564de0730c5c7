#include "soak/files.h"

#include "model/comparison.h"
#include "persistence/audit_file.h"
#include "soak/plant.h"

#include <kestrona/audit_log.h>
#include <kestrona/binary_strings.h>
#include <kestrona/definition_load.h>
#include <kestrona/host_settings.h>
#include <kestrona/process.h>
#include <kestrona/records.h>
#include <kestrona/table_definition_stream.h>
#include <kestrona/table_storage.h>

#include <cstdio>
#include <filesystem>

namespace Kestrona::Soak {

using namespace Data::MemoryResident;
using Common::TableStorage;
using Model::Mirror;

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, FileCloser>;

const wchar_t* const kCaption = L"soak";

File WriteDefinition(MemoryResidentData& store) {
    File file(std::tmpfile());
    KSDLL_ResetChecksum();
    WriteTableDefinitionToStream(store, L"", L"", file.get(), nullptr);
    return file;
}

bool ReadDefinition(MemoryResidentData& store, std::FILE* file) {
    KSDLL_ResetChecksum();
    return ReadTableDefinitionFromStream(store, file, nullptr, true, true, true, kCaption, kCaption, nullptr);
}

std::string BytesOf(std::FILE* file) {
    std::string bytes(static_cast<std::size_t>(std::ftell(file)), '\0');
    std::rewind(file);
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    std::rewind(file);
    return bytes;
}

} // namespace

Files::Files(const Model::Plan& plan) : plan_(plan), second_(CreateMemoryResidentData()) {
    Model::Build(*second_, plan);
}

std::string Files::CheckTable(Mirror& mirror, std::int32_t format) {
    const File file(std::tmpfile());
    TableStorage::WriteTableData(mirror.Store(), format, file.get());
    std::rewind(file.get());
    TableStorage::ReadTableData(*second_, format, file.get());
    std::string difference = Model::FormatDifference(*second_, mirror.TheTwin(), format, false);
    KSDLL_Clear(*second_, format);
    return difference.empty() ? "" : "a table came back different: " + difference;
}

std::string Files::CheckDefinition(Mirror& mirror) {
    const File first = WriteDefinition(mirror.Store());
    const std::string bytes = BytesOf(first.get());
    const auto store = CreateMemoryResidentData();
    if (!ReadDefinition(*store, first.get())) {
        return "a definition is not read";
    }
    return BytesOf(WriteDefinition(*store).get()) == bytes ? "" : "a definition came back different";
}

std::string Files::CheckSnapshot(Mirror& mirror) const {
    const File file = WriteDefinition(mirror.Store());
    const std::int32_t formats = mirror.Store().GetFormatCount();
    for (std::int32_t format = 0; format < formats; ++format) {
        TableStorage::WriteTableData(mirror.Store(), format, file.get());
    }
    std::rewind(file.get());
    const auto store = CreateMemoryResidentData();
    if (!ReadDefinition(*store, file.get())) {
        return "the definition of a snapshot is not read";
    }
    KSDLL_CreateDataArrays(*store);
    Model::Calculate(*store, plan_);
    for (std::int32_t format = 0; format < formats; ++format) {
        TableStorage::ReadTableData(*store, format, file.get());
    }
    const std::string difference = Model::StoreDifference(*store, mirror.TheTwin(), false);
    return difference.empty() ? "" : "a snapshot came back different: " + difference;
}

std::string Files::CheckDuplicate(Mirror& mirror, std::int32_t format) {
    MemoryResidentData& store = mirror.Store();
    std::wstring name = L"Duplicate";
    const std::int32_t formats = store.GetFormatCount();
    const std::int32_t made = store.CreateDuplicateFormat(format, name.data(), false);
    if (made != formats || store.GetDbFields(made) != mirror.Fields(format) || store.GetCurrentDbSize(made) != 0 ||
        store.FindFormatByName(name.c_str()) != made) {
        return "a duplicate of a format";
    }
    std::string problem;
    for (std::int32_t record = 0; record < 5; ++record) {
        if (KSDLL_CreateRecord(store, made) != record) {
            problem = "a record of a duplicate";
        }
        const std::int32_t source = mirror.Draw(mirror.TheTwin().Size(format));
        store.SetDbValue(made, kLoad, record, store.GetDbValue(format, kLoad, source));
        store.SetDbString(made, kName, record, store.GetDbString(format, kName, source));
        if (store.GetDbString(made, kName, record) != mirror.TheTwin().Text(format, kName, source) ||
            store.LookupKeyRecord(made, store.GetDbKeyValue(made, record)) != record) {
            problem = "a cell of a duplicate";
        }
    }
    KSDLL_Clear(store, made);
    store.DestroyFormat(made);
    return store.GetFormatCount() == formats ? problem : "a duplicate that stays";
}

std::string Files::CheckAudit(Mirror& mirror, std::int32_t format) {
    constexpr std::uintmax_t kLongest = 1 << 20;
    const std::filesystem::path log = "Audit.log";
    const std::int32_t record = mirror.Draw(mirror.TheTwin().Size(format));
    const std::uintmax_t before = std::filesystem::exists(log) ? std::filesystem::file_size(log) : 0;
    SetAuditLogEnabled(true);
    mirror.Tell("KSDLL_WriteLog ", format, ' ', record);
    mirror.Store().CopyItemInfo(record, KSDLL_GetUserTempRecord(), format);
    mirror.SetNumber(format, kLoad, record, mirror.TheTwin().Number(format, kLoad, record) > 100.0 ? 0.5 : 200.5);
    KSDLL_WriteLog(mirror.Store(), format, KSDLL_GetUserTempRecord(), record);
    SetAuditLogEnabled(false);
    Persistence::CloseAuditFile();
    if (!std::filesystem::exists(log) || std::filesystem::file_size(log) <= before) {
        return "no entry in the audit log";
    }
    if (std::filesystem::file_size(log) > kLongest) {
        std::filesystem::remove(log);
    }
    return "";
}

} // namespace Kestrona::Soak
