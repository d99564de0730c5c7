#pragma once

#include <kestrona/store.h>

#include <nlohmann/json.hpp>

// What a definition stream holds of a store, in the form of tests/oracles/compiled.py.
namespace Kestrona::ConfigurationTest {

nlohmann::json DescribeFormats(Data::MemoryResident::MemoryResidentData& store);
nlohmann::json DescribeSubstitutions(Data::MemoryResident::MemoryResidentData& store);

} // namespace Kestrona::ConfigurationTest
