#pragma once

#include "model/mirror.h"
#include "soak/files.h"
#include "soak/plant.h"

#include <kestrona/store.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace Kestrona::Soak {

struct Settings {
    unsigned seed = 1;
    std::int32_t seconds = 5;
    std::int32_t formats = 20;
    std::int32_t records = 3000;
};

// How often an operation was done, and how long it took in all.
struct Tally {
    std::int64_t count = 0;
    double seconds = 0.0;
};

// A plant and random operations of every kind on it. What an operation finds wrong is told by `Problem`.
class Soak {
public:
    explicit Soak(const Settings& settings);

    // Gives every format its records.
    void Fill();
    // One operation in a random format, and a comparison of a few of its records.
    void Step();
    // Every record against the twin.
    void CompareAll();
    // Everything saved, loaded and compared.
    void CheckSnapshot();

    [[nodiscard]] const std::string& Problem() const { return problem_; }

    [[nodiscard]] std::string LastOperations() const { return mirror_.LastOperations(); }

    [[nodiscard]] const std::map<std::string, Tally>& Tallies() const { return tallies_; }

    [[nodiscard]] std::int64_t Records();

    [[nodiscard]] std::int64_t ComparedRecords() const { return compared_; }

private:
    struct Operation {
        const char* name;
        std::int32_t weight; // in 10000
        bool only_large;
        std::string (*run)(Soak& soak, std::int32_t format);
    };

    static const Operation kOperations[];

    template <typename Action>
    void Count(const std::string& name, Action action);
    void Populate(std::int32_t format);
    void KeepFilled(std::int32_t format);
    void CompareSome(std::int32_t format);

    Plant plant_;
    std::unique_ptr<Data::MemoryResident::MemoryResidentData> store_;
    Files files_;
    Model::Mirror mirror_;
    std::map<std::string, Tally> tallies_;
    std::int64_t compared_ = 0;
    std::string problem_;
};

} // namespace Kestrona::Soak
