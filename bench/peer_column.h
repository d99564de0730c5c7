#pragma once

#include <cstdint>
#include <memory>
#include <vector>

// What a store's cell access is measured against: the same road written out by hand. The formats and fields are plain
// vectors of the caller, the column is a plain vector behind a virtual interface in a library of its own.
class __attribute__((visibility("default"))) PeerColumn {
public:
    virtual ~PeerColumn() = default;
    virtual double GetValue(std::int32_t record) const = 0;
    virtual void SetValue(std::int32_t record, const double& value) = 0;
};

// A column that answers 0.0 beyond its end and grows when written there.
__attribute__((visibility("default"))) std::unique_ptr<PeerColumn> MakePeerColumn();
// The same; it also sets a bit for each record whose value changes and counts the changes.
__attribute__((visibility("default"))) std::unique_ptr<PeerColumn> MakeMarkingPeerColumn();

struct PeerFormat {
    std::vector<std::unique_ptr<PeerColumn>> fields;
};
