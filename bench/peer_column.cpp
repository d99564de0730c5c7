#include "peer_column.h"

#include <cstddef>

namespace {

class PlainColumn : public PeerColumn {
public:
    double GetValue(std::int32_t record) const override {
        const auto index = static_cast<std::size_t>(static_cast<std::uint32_t>(record));
        return index < values_.size() ? values_[index] : 0.0;
    }

    void SetValue(std::int32_t record, const double& value) override { Store(record, value); }

protected:
    bool Store(std::int32_t record, double value) {
        const auto index = static_cast<std::size_t>(static_cast<std::uint32_t>(record));
        if (index >= values_.size()) {
            values_.resize(index + 1);
        }
        if (values_[index] == value) {
            return false;
        }
        values_[index] = value;
        return true;
    }

private:
    std::vector<double> values_;
};

class MarkingColumn : public PlainColumn {
public:
    void SetValue(std::int32_t record, const double& value) override {
        if (Store(record, value)) {
            const auto index = static_cast<std::size_t>(static_cast<std::uint32_t>(record));
            if (index >= marks_.size()) {
                marks_.resize(index + 1);
            }
            marks_[index] = true;
            ++changes_;
        }
    }

private:
    std::vector<bool> marks_;
    std::int64_t changes_ = 0;
};

} // namespace

std::unique_ptr<PeerColumn> MakePeerColumn() {
    return std::make_unique<PlainColumn>();
}

std::unique_ptr<PeerColumn> MakeMarkingPeerColumn() {
    return std::make_unique<MarkingColumn>();
}
