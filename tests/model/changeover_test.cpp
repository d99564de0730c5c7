// Changeover times of real job shops, kept as one matrix for each machine over all pairs of operations.
#include "fixtures/recording_services.h"
#include "fixtures/schema.h"

#include <kestrona/matrices.h>
#include <kestrona/records.h>
#include <kestrona/store.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace Kestrona::Model {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

constexpr double kNewCell = -3.0;
constexpr std::int32_t kOperations = 0;
constexpr std::int32_t kMachines = 1;
constexpr std::int32_t kChangeover = 1;

using Grid = std::vector<std::vector<double>>;

struct Instance {
    std::int32_t operations = 0;
    std::vector<Grid> machines;
};

Instance Read(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    std::int32_t jobs = 0;
    std::size_t machines = 0;
    std::istringstream(line) >> jobs >> machines;
    Instance instance;
    for (; jobs > 0 && std::getline(file, line); --jobs) {
        std::int32_t operations = 0;
        std::istringstream(line) >> operations;
        instance.operations += operations;
    }
    const auto side = static_cast<std::size_t>(instance.operations);
    instance.machines.assign(machines, Grid(side, std::vector<double>(side)));
    for (Grid& grid : instance.machines) {
        for (std::vector<double>& row : grid) {
            for (double& cell : row) {
                file >> cell;
            }
        }
    }
    EXPECT_TRUE(file) << path;
    return instance;
}

class Changeover : public testing::Test {
protected:
    void Load(const Instance& instance) {
        store = CreateMemoryResidentData();
        AddTable(*store, L"Operations", {Number(L"Key", 1.0)});
        AddTable(*store, L"Machines",
                 {Number(L"Key", 1.0),
                  {.name = L"Changeover",
                   .type = TypeBit::kMatrix,
                   .classes = {Classes::k3DMatrix},
                   .default_value = kNewCell,
                   .table = kOperations,
                   .table_y = kOperations}});
        for (std::int32_t i = 0; i < instance.operations; ++i) {
            ASSERT_EQ(KSDLL_CreateRecord(*store, kOperations), i);
        }
        for (const Grid& grid : instance.machines) {
            const std::int32_t id =
                KSDLL_GetDbMatrix(*store, kMachines, kChangeover, KSDLL_CreateRecord(*store, kMachines));
            std::uint32_t index = 0;
            for (const std::vector<double>& row : grid) {
                for (const double cell : row) {
                    KSDLL_SetMatrixValue(id, index++, cell);
                }
            }
        }
    }

    void ExpectGrids(const std::vector<Grid>& machines, const std::string& when) {
        ASSERT_EQ(store->GetCurrentDbSize(kMachines), static_cast<std::int32_t>(machines.size())) << when;
        for (std::int32_t machine = 0; machine < store->GetCurrentDbSize(kMachines); ++machine) {
            const Grid& grid = machines[static_cast<std::size_t>(machine)];
            Grid found(grid.size(), std::vector<double>(grid.size()));
            std::uint32_t index = 0;
            for (std::vector<double>& row : found) {
                for (double& cell : row) {
                    cell = KSDLL_GetMatrixValue(*store, kMachines, kChangeover, machine, index++);
                }
            }
            EXPECT_EQ(found, grid) << when << ", machine " << machine;
            EXPECT_EQ(KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(*store, kMachines, kChangeover, machine)),
                      static_cast<std::int32_t>(grid.size() * grid.size()))
                << when;
        }
    }

    FreshProcess process;
    std::unique_ptr<MemoryResidentData> store;
};

void OpenRowAndColumn(Grid& grid, std::int32_t at) {
    for (std::vector<double>& row : grid) {
        row.insert(row.begin() + at, kNewCell);
    }
    grid.insert(grid.begin() + at, std::vector<double>(grid.size() + 1, kNewCell));
}

void CloseRowAndColumn(Grid& grid, std::int32_t at) {
    grid.erase(grid.begin() + at);
    for (std::vector<double>& row : grid) {
        row.erase(row.begin() + at);
    }
}

TEST_F(Changeover, OperationsComeAndGoInTheMiddleOfRealMatrices) {
    const std::string folder = std::string(KESTRONA_SOURCE_DIR) + "/../shared/data/jobshop/fjsp-sdst";
    if (!std::filesystem::is_directory(folder)) {
        std::cout << "[   NOTE   ] " << folder << " is not there; nothing was checked\n";
        return;
    }
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".fjs") {
            continue;
        }
        const std::string name = entry.path().filename().string();
        const Instance instance = Read(entry.path());
        ASSERT_GE(instance.operations, 4) << name;
        ASSERT_NO_FATAL_FAILURE(Load(instance)) << name;
        ExpectGrids(instance.machines, name + " as loaded");

        const std::int32_t middle = instance.operations / 2;
        for (const std::int32_t at : {middle, 0, instance.operations}) {
            std::vector<Grid> opened = instance.machines;
            std::ranges::for_each(opened, [&](Grid& grid) { OpenRowAndColumn(grid, at); });
            KSDLL_InsertDbItem(*store, kOperations, at);
            ExpectGrids(opened, name + " with a new operation at " + std::to_string(at));
            KSDLL_DeleteDbItem(*store, kOperations, at);
            ExpectGrids(instance.machines, name + " without operation " + std::to_string(at));
        }

        std::vector<Grid> closed = instance.machines;
        for (const std::int32_t at : {instance.operations - 1, middle, 1}) {
            std::ranges::for_each(closed, [&](Grid& grid) { CloseRowAndColumn(grid, at); });
        }
        KSDLL_DeleteDbItems(*store, kOperations, {1, instance.operations - 1, middle});
        ExpectGrids(closed, name + " without three operations");
        ++files;
    }
    EXPECT_EQ(files, 10);
}

} // namespace

} // namespace Kestrona::Model
