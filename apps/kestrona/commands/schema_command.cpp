#include "commands/commands.h"
#include "commands/session.h"
#include "data/cell_text.h"
#include "exit_codes.h"
#include "field_description.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

std::string Utf8(const wchar_t* text) {
    return text == nullptr ? std::string() : ToUtf8(text);
}

std::string FieldName(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return field < 0 ? std::string() : ToUtf8(store.GetColumnName(format, field));
}

int ListFormats(IMemoryResidentData& store, OutputForm form) {
    ListSource source({{"Format"},
                       {"Display name"},
                       {"Fields", CellKind::Number},
                       {"Key"},
                       {"Extension"},
                       {"Part of"},
                       {"Refers to"}});
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        source.AddRow({Utf8(store.GetDbName(format)), ToUtf8(store.GetDbDisplayName(format)),
                       std::to_string(store.GetDbFields(format)), FieldName(store, format, store.GetDbKey(format)),
                       Utf8(store.GetDbExtension(format)), Utf8(store.GetAssociatedTable(format)),
                       ReferredFormats(store, format)});
    }
    return WriteTable(source, form, stdout) ? kExitGood : kExitUnreadableInput;
}

int ListFields(IMemoryResidentData& store, std::int32_t format, OutputForm form) {
    ListSource source({{"No", CellKind::Number},
                       {"Field"},
                       {"Type"},
                       {"Default"},
                       {"Level", CellKind::Number},
                       {"Refers to"},
                       {"Classification"}});
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        source.AddRow({std::to_string(field), FieldName(store, format, field), TypeName(store, format, field),
                       DefaultText(store, format, field), std::to_string(store.GetDbDialogLevel(format, field)),
                       ReferenceText(store, format, field), ToUtf8(store.GetDbClassString(format, field))});
    }
    return WriteTable(source, form, stdout) ? kExitGood : kExitUnreadableInput;
}

} // namespace

int RunSchema(const SchemaOptions& options) {
    Session session;
    if (const int code = session.Load(options.definition); code != kExitGood) {
        return code;
    }
    if (options.table.empty()) {
        return ListFormats(session.Store(), options.form);
    }
    const std::int32_t format = session.FindFormat(options.table);
    return format < 0 ? kExitUsage : ListFields(session.Store(), format, options.form);
}

} // namespace Kestrona::Tool
