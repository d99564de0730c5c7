#include "schema/field_links.h"

#include "data/field_names.h"

#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>
#include <kestrona/record_search.h>
#include <kestrona/unicode.h>

#include <array>
#include <utility>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

// A keyword whose class says that two data slots hold its target.
struct SlotLink {
    Class c;
    std::string_view keyword;
    std::int32_t format_slot; // kOwnFormat: the field is one of the same format
    std::int32_t field_slot;
};

constexpr std::int32_t kOwnFormat = -1;

constexpr std::array kSlotLinks{
    SlotLink{Classes::kAssociate, "ASSOCIATE", kOwnFormat, DataSlot::kAssociateField},
    SlotLink{Classes::kMatchField, "MATCH FIELD", DataSlot::kMatrixFormat, DataSlot::kMatrixField},
    SlotLink{Classes::kSourceOrder, "SOURCE ORDER", DataSlot::kMatrixFormat, DataSlot::kMatrixField},
    SlotLink{Classes::kLocalAssignment, "LOCAL ASSIGNMENT", DataSlot::kAssignmentFormat, DataSlot::kAssignmentField},
    SlotLink{Classes::kMatchDurationField, "MATCH DURATION FIELD", DataSlot::kAssignmentFormat,
             DataSlot::kAssignmentField},
    SlotLink{Classes::kMatchDurationField, "MATCH END DURATION FIELD", DataSlot::kAssignmentFormat,
             DataSlot::kMatchEndField},
    SlotLink{Classes::kSetupOverrideMatch, "SETUP OVERRIDE MATCH", DataSlot::kSetupMatchFormat,
             DataSlot::kSetupMatchField},
    SlotLink{Classes::kAutoRestrict, "AUTO RESTRICT", kOwnFormat, DataSlot::kRestrictField},
    SlotLink{Classes::kStringStorage, "STRING STORAGE", DataSlot::kStorageFormat, DataSlot::kStorageField},
    SlotLink{Classes::kExpandMatch, "EXPAND MATCH", DataSlot::kExpandFormat, DataSlot::kExpandField},
    SlotLink{Classes::kExpandReference, "EXPAND REFERENCE", DataSlot::kExpandFormat, DataSlot::kExpandField},
};

// A keyword whose class says that table Y holds a field of the same format.
struct OwnFieldLink {
    Class c;
    std::string_view keyword;
};

constexpr std::array kTableYLinks{
    OwnFieldLink{Classes::kRelatedList, "RELATED LIST"},
    OwnFieldLink{Classes::kAdditionalReference, "ADDITIONAL REFERENCE"},
    OwnFieldLink{Classes::kOverride, "OVERRIDE"},
    OwnFieldLink{Classes::kUpdateReference, "UPDATE REFERENCE"},
    OwnFieldLink{Classes::kAutoSplit, "AUTO SPLIT"},
};

class LinkCollector {
public:
    LinkCollector(IMemoryResidentData& store, std::int32_t format, std::int32_t field)
        : store_(store),
          format_(format),
          field_(field) {}

    std::vector<FieldLink> Collect() {
        AddReference();
        AddDimensions();
        for (const SlotLink& link : kSlotLinks) {
            if (Is(link.c)) {
                const std::int32_t format = link.format_slot == kOwnFormat ? format_ : Slot(link.format_slot);
                Add(link.keyword, LinkKind::Other, format, Slot(link.field_slot));
            }
        }
        for (const OwnFieldLink& link : kTableYLinks) {
            if (Is(link.c)) {
                Add(link.keyword, LinkKind::Other, format_, store_.GetDbTableY(format_, field_));
            }
        }
        AddLookup();
        AddRest();
        AddRemote();
        return std::move(links_);
    }

private:
    [[nodiscard]] bool Is(Class c) const { return store_.ClassDefined(format_, field_, c); }

    [[nodiscard]] std::int32_t Slot(std::int32_t slot) const { return store_.GetDbData(format_, field_, slot); }

    [[nodiscard]] bool IsMatrix() const { return (store_.GetDbType(format_, field_) & TypeBit::kMatrix) != 0; }

    // A field number of -1 stands for the whole format.
    void Add(std::string_view keyword, LinkKind kind, std::int32_t format, std::int32_t field) {
        if (format >= 0 && format < store_.GetFormatCount() && field < store_.GetDbFields(format)) {
            links_.push_back({keyword, kind, format, field});
        }
    }

    void AddReference() {
        if (Is(Classes::kDatabase)) {
            const bool matrix = IsMatrix();
            Add("DATABASE", LinkKind::Reference,
                matrix ? Slot(DataSlot::kMatrixFormat) : store_.GetDbTable(format_, field_),
                matrix ? Slot(DataSlot::kMatrixField) : store_.GetDbSource(format_, field_));
        }
        if (Is(Classes::kSource)) {
            Add("SOURCE", LinkKind::Other, Slot(DataSlot::kUpdateSourceFormat), store_.GetDbSourceS(format_, field_));
        }
        if (Is(Classes::kFamily)) {
            Add("FAMILY", LinkKind::Reference, format_, store_.GetDbTable(format_, field_));
        }
        const std::int32_t related = store_.GetDbRelated(format_, field_);
        if (related >= 0 && IsMatrixLink()) {
            Add("RELATED FIELD", LinkKind::Other, format_, related);
            AddMatrixField(related);
        }
    }

    // Whether the record of the list or matrix over there is chosen by a field of this format.
    [[nodiscard]] bool IsMatrixLink() const {
        return Is(Classes::kRelatedField) || Is(Classes::kDatabase) || Is(Classes::kList);
    }

    // The list or matrix over there. Its own reference and dimensions have taken the place of its number.
    void AddMatrixField(std::int32_t related) {
        const bool refers = store_.ClassDefined(format_, related, Classes::kDatabase);
        const std::int32_t format = refers ? store_.GetDbTable(format_, related) : format_;
        const std::int32_t matrix = store_.GetFieldInfo(format_, field_)->matrixField;
        if ((store_.GetDbType(format, matrix) & TypeBit::kMatrix) != 0) {
            Add("entry of", LinkKind::Other, format, matrix);
        }
    }

    void AddDimensions() {
        if (Is(Classes::kList) && store_.GetDbTableY(format_, field_) >= 0) {
            Add("AUTO LIST", LinkKind::List, store_.GetDbTableY(format_, field_), store_.GetDbSourceY(format_, field_));
        }
        if (!Is(Classes::kAutoDimension)) {
            return;
        }
        Add("X axis", LinkKind::Dimension, store_.GetDbTable(format_, field_), store_.GetDbSource(format_, field_));
        const std::int32_t y = store_.GetDbTableY(format_, field_);
        if (y >= 0) {
            Add("Y axis", LinkKind::Dimension, y, store_.GetDbSourceY(format_, field_));
        }
        if (Is(Classes::kMatrixDefault)) {
            Add("MATRIX DEFAULT", LinkKind::Other, y, Slot(DataSlot::kMatrixDefaultField));
        }
        if (Is(Classes::kMatrixMinimum)) {
            Add("MATRIX MINIMUM", LinkKind::Other, y, Slot(DataSlot::kMatrixMinimumField));
        }
    }

    // Both keywords keep their target in the same slots, and LOOKUP UPDATE is written later.
    void AddLookup() {
        if (Is(Classes::kLookupUpdate) || Is(Classes::kLookupSource)) {
            Add(Is(Classes::kLookupUpdate) ? "LOOKUP UPDATE" : "LOOKUP SOURCE", LinkKind::Other,
                Slot(DataSlot::kLookupFormat), Slot(DataSlot::kLookupField));
        }
    }

    void AddRest() {
        if (Is(Classes::kOrderMatch)) {
            Add("ORDER MATCH", LinkKind::Other, store_.GetAssociateTableNumber(format_),
                Slot(DataSlot::kOrderMatchField));
        }
        const std::int32_t switching = Slot(DataSlot::kSwitchField);
        if (switching >= 0) {
            Add(Slot(DataSlot::kSwitchOn) != 0 ? "switched, at first on, by" : "switched by", LinkKind::Other, format_,
                switching);
        }
    }

    void AddRemote() {
        const std::wstring text = store_.GetDbClassString(format_, field_);
        AddNamed(Configuration::Parsers::ClassificationParser_REMOTE(), "REMOTE", text);
        AddNamed(Configuration::Parsers::ClassificationParser_REMOTE_DEF(), "REMOTE_DEF", text);
    }

    // Targets that no slot holds: one field can have any number of them.
    void AddNamed(const Configuration::Parsers::TwoKeyClassificationParser& parser, std::string_view keyword,
                  const std::wstring& text) {
        for (const Configuration::Parsers::ClassificationMatch& match : parser.MatchAll(text)) {
            const TableColumn link =
                Find(match.Values.at(parser.get_FirstKey()), match.Values.at(parser.get_SecondKey()));
            if (link.format >= 0) {
                links_.push_back({keyword, LinkKind::Other, link.format, link.field});
            }
        }
    }

    [[nodiscard]] TableColumn Find(const std::wstring& format_name, const std::wstring& field_name) const {
        const std::int32_t format = KSDLL_FindFormatImpl(store_, format_name.c_str());
        for (std::int32_t field = 0; format >= 0 && field < store_.GetDbFields(format); ++field) {
            if (store_.GetColumnName(format, field) == field_name) {
                return {format, field};
            }
        }
        return {};
    }

    IMemoryResidentData& store_;
    std::int32_t format_;
    std::int32_t field_;
    std::vector<FieldLink> links_;
};

} // namespace

std::vector<FieldLink> FieldLinks(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return LinkCollector(store, format, field).Collect();
}

std::string TargetText(IMemoryResidentData& store, const FieldLink& link, std::int32_t home) {
    std::string field = link.field < 0 ? std::string() : ToUtf8(store.GetColumnName(link.format, link.field));
    if (link.format == home && !field.empty()) {
        return field;
    }
    const std::string format = FormatName(store, link.format);
    return field.empty() ? format : format + "(" + field + ")";
}

} // namespace Kestrona::Tool
