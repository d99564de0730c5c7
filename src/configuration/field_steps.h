#pragma once

#include "configuration/field_scope.h"

// The steps of the field pass, grouped by family. Each looks at one keyword of the field at hand: it looks up what the
// keyword names, stores the numbers and sets the class bit. Each answers whether the pass goes on; a step that answers
// false has reported why. field_pass.cpp has their order, which is part of what they mean.
namespace Kestrona::Configuration {

// References to fields of other formats
bool ClearLinks(FieldScope& scope);
bool ReplaceDatabaseByClassification(FieldScope& scope);
bool ReplaceFindClassification(FieldScope& scope);
bool ResolveDatabase(FieldScope& scope);
bool ResolveSource(FieldScope& scope);

// Texts kept in another format
bool CheckStringsHaveStorage(FieldScope& scope);
bool ResolveStringStorage(FieldScope& scope);

// Values that stand for fields
bool ResolveRemoteDefault(FieldScope& scope);
bool ResolveRemote(FieldScope& scope);

// Lists
bool ResolveAutoList(FieldScope& scope);
bool ResolveDataList(FieldScope& scope);

// Matrices
bool ResolveAutoDimension(FieldScope& scope);
bool ResolveCommonMatrix(FieldScope& scope);
bool MarkTwoDimensions(FieldScope& scope);

// Links that set a class and two slots, or a field of the same format
bool ResolveSwitches(FieldScope& scope);
bool ResolveRelatedField(FieldScope& scope);
bool ResolveLocalAssignment(FieldScope& scope);
bool ResolveSetupOverrideMatch(FieldScope& scope);
bool ResolveMatchField(FieldScope& scope);
bool ResolveSourceOrder(FieldScope& scope);
bool ResolveMatchDurationField(FieldScope& scope);
bool ResolveLookupSource(FieldScope& scope);
bool ResolveOrderMatch(FieldScope& scope);
bool ResolveExpandMatch(FieldScope& scope);
bool ResolveExpandReference(FieldScope& scope);

// Runs when the other steps have run for every field of the format.
bool ResolveLookupUpdate(FieldScope& scope);

} // namespace Kestrona::Configuration
