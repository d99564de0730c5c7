#pragma once

#include "configuration/field_scope.h"

// The steps of the relationship pass, grouped by family. Each answers whether the pass goes on; a step that answers
// false has reported why. relationship_pass.cpp has their order.
namespace Kestrona::Configuration {

// Checks of what other fields' keywords have made of the fields referred to
bool CheckLookupSource(FieldScope& scope);
bool CheckLookupUpdate(FieldScope& scope);
bool CheckSource(FieldScope& scope);

// Fields that belong to a list or a matrix
bool ResolveRelatedList(FieldScope& scope);
bool ResolveAssociate(FieldScope& scope);
bool ResolveAutoRestrict(FieldScope& scope);
bool ResolveFamily(FieldScope& scope);
bool FindRelatedField(FieldScope& scope);

// Fields that lean on another field of their format
bool ResolveAdditionalReference(FieldScope& scope);
bool ResolveOverride(FieldScope& scope);
bool ResolveUpdateReference(FieldScope& scope);
bool ResolveAutoSplit(FieldScope& scope);

// What the field itself may be
bool CheckReferenceIsNoText(FieldScope& scope);
bool ReleaseFromParentSort(FieldScope& scope);
bool CheckEncryption(FieldScope& scope);

} // namespace Kestrona::Configuration
