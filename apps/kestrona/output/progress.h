#pragma once

#include "output/table_source.h"

#include <kestrona/host/feedback.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

/// \file
/// How far a long command has come.

namespace Kestrona::Tool {

/// Shows "[ 50 %] what" on stderr if that is a terminal, once two seconds have gone by. The line is taken away at the
/// end of the object; nothing else may be printed before.
class Progress {
public:
    /// `total`: the sum of all advances.
    Progress(const std::string& what, std::uintmax_t total);

    void Advance(std::uintmax_t by);

private:
    Host::ConsoleFeedback feedback_;
    std::uintmax_t total_;
    std::uintmax_t done_ = 0;
    std::int32_t percent_ = -1;
};

/// Another table, which tells how far its reader has come. Borrows the progress.
class WatchedSource : public TableSource {
public:
    WatchedSource(std::unique_ptr<TableSource> source, Progress& progress)
        : source_(std::move(source)),
          progress_(progress) {}

    [[nodiscard]] const std::vector<OutputColumn>& Columns() const override { return source_->Columns(); }

    [[nodiscard]] std::size_t RowCount() const override { return source_->RowCount(); }

    [[nodiscard]] std::string Cell(std::size_t row, std::size_t column) const override {
        progress_.Advance(column == 0 ? 1 : 0);
        return source_->Cell(row, column);
    }

private:
    std::unique_ptr<TableSource> source_;
    Progress& progress_;
};

} // namespace Kestrona::Tool
