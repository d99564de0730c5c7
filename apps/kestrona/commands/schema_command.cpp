#include "commands/definition_commands.h"
#include "commands/session.h"
#include "data/field_names.h"
#include "exit_codes.h"
#include "output/property_sheet.h"
#include "output/text_output.h"
#include "schema/class_names.h"
#include "schema/field_description.h"
#include "schema/field_links.h"

#include <kestrona/classification_readers.h>
#include <kestrona/unicode.h>

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
        source.AddRow({FormatName(store, format), ToUtf8(store.GetDbDisplayName(format)),
                       std::to_string(store.GetDbFields(format)), FieldName(store, format, store.GetDbKey(format)),
                       Utf8(store.GetDbExtension(format)), Utf8(store.GetAssociatedTable(format)),
                       ReferredFormats(store, format)});
    }
    return OutputCode(WriteTable(source, form, stdout));
}

int ListFields(IMemoryResidentData& store, std::int32_t format, OutputForm form) {
    ListSource source({{"No", CellKind::Number},
                       {"Field"},
                       {"Type"},
                       {"Default"},
                       {"Level", CellKind::Number},
                       {"Refers to"},
                       {"Dimensions"},
                       {"Links"},
                       {"Classes"},
                       {"Classification"}});
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        source.AddRow({std::to_string(field), FieldName(store, format, field), TypeName(store, format, field),
                       DefaultText(store, format, field), std::to_string(store.GetDbDialogLevel(format, field)),
                       ReferenceText(store, format, field), DimensionText(store, format, field),
                       LinksText(store, format, field), ClassesText(store, format, field),
                       ToUtf8(store.GetDbClassString(format, field))});
    }
    return OutputCode(WriteTable(source, form, stdout));
}

std::string DialogLevelText(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return store.IsHiddenDialog(format, field) ? "hidden" : std::to_string(store.GetDbDialogLevel(format, field));
}

int ShowField(IMemoryResidentData& store, std::int32_t format, std::int32_t field, OutputForm form) {
    PropertySheet sheet;
    sheet.Add("Field", FieldName(store, format, field));
    sheet.Add("Name in dialogs", ToUtf8(GetDialogFieldName(store, format, field)));
    sheet.Add("Type", TypeName(store, format, field));
    sheet.Add("Key", store.GetDbKey(format) == field ? "yes" : "");
    sheet.Add("Default", DefaultText(store, format, field));
    sheet.Add("Length", LengthText(store, format, field));
    sheet.Add("Dialog level", DialogLevelText(store, format, field));
    sheet.Add("Dimensions", DimensionText(store, format, field));
    for (const FieldLink& link : FieldLinks(store, format, field)) {
        if (link.kind != LinkKind::Dimension) {
            sheet.Add(std::string(link.keyword), TargetText(store, link, format));
        }
    }
    for (const std::string& name : ClassNames(store, format, field)) {
        sheet.Add("Class", name);
    }
    sheet.Add("Classification", ToUtf8(store.GetDbClassString(format, field)));
    return OutputCode(WriteTable(sheet, form, stdout));
}

int Describe(Session& session, const SchemaOptions& options) {
    const std::int32_t format = session.FindFormat(options.table);
    if (format < 0) {
        return kExitUsage;
    }
    if (options.field.empty()) {
        return ListFields(session.Store(), format, options.form);
    }
    const std::int32_t field = session.FindField(format, options.field);
    return field < 0 ? kExitUsage : ShowField(session.Store(), format, field, options.form);
}

} // namespace

int RunSchema(const SchemaOptions& options) {
    Session session;
    if (const int code = session.Load(options.definition); code != kExitGood) {
        return code;
    }
    return options.table.empty() ? ListFormats(session.Store(), options.form) : Describe(session, options);
}

} // namespace Kestrona::Tool
