#pragma once

#include "fixtures/scratch_files.h"

#include <kestrona/host/default_host.h>
#include <kestrona/host/snapshot.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Kestrona::Host {

using Store = Data::MemoryResident::MemoryResidentData;

// A small definition with a field of every form that a table block knows.
extern const char* const kSmallPlant;

// A host that keeps quiet, and a folder that goes with the test.
class SnapshotTest : public testing::Test {
protected:
    SnapshotTest();
    ~SnapshotTest() override;

    [[nodiscard]] std::string Path(const std::string& name) const { return folder_.Path(name); }

    [[nodiscard]] std::size_t FilesInFolder() const;

    // As in a new process. Stores of the former host must be gone.
    void Restart();

    // A store with the definition in this file, without records.
    std::unique_ptr<Store> MakeStore(const std::string& definition);
    // The same with the small plant and a few records.
    std::unique_ptr<Store> MakeSmallStore(unsigned seed = 1);

    std::string out_; // what the host has said
    Testing::ScratchFolder folder_;
    std::unique_ptr<DefaultHost> host_;
};

// Makes a number of records in each format, with values, texts and matrices by chance. Some cells keep their defaults.
void FillByChance(Store& store, std::int32_t records, unsigned seed);

// All cells as text, one line for each record of each format; without fields that are not saved.
std::string CellsOf(Store& store);

// Where two texts differ, "" where they do not. Texts of this size take too long to be compared by lines.
std::string Difference(const std::string& found, const std::string& expected);

bool HasChanges(Store& store);

// The bytes of a snapshot without the time at which it was saved.
std::string WithoutStamp(std::string bytes);

} // namespace Kestrona::Host
