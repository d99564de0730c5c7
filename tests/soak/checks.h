#pragma once

#include "model/mirror.h"

#include <cstdint>
#include <string>

// Uses of the library that change nothing, or what they say, each compared with what the twin tells: "" when both
// agree. Every format has records.
namespace Kestrona::Soak {

std::string CheckKeys(Model::Mirror& mirror, std::int32_t format);
// Sorts to a list of record numbers; the other one moves the rows.
std::string CheckSort(Model::Mirror& mirror, std::int32_t format);
std::string SortRows(Model::Mirror& mirror, std::int32_t format);
std::string CheckTexts(Model::Mirror& mirror, std::int32_t format);
// Change marks of writes, deletions and transactions, after a reset.
std::string CheckMarks(Model::Mirror& mirror, std::int32_t format);

// Requires here and below: a large format.
std::string CheckExpressions(Model::Mirror& mirror, std::int32_t format);
// A path through references, followed to read and to write.
std::string CheckPath(Model::Mirror& mirror, std::int32_t format);

} // namespace Kestrona::Soak
