#pragma once

#include "output/table_source.h"

#include <string>
#include <utility>

namespace Kestrona::Tool {

/// A table with one row for each thing that there is to say of something.
class PropertySheet : public ListSource {
public:
    PropertySheet() : ListSource({{"Property"}, {"Value"}}) {}

    /// An empty value is nothing to say.
    void Add(std::string property, std::string value) {
        if (!value.empty()) {
            AddRow({std::move(property), std::move(value)});
        }
    }
};

} // namespace Kestrona::Tool
