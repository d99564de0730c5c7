// Long random sequences of everything that changes a plant, on the store and on an obvious twin of it.
#include "fixtures/recording_services.h"
#include "model/comparison.h"
#include "model/mirror.h"
#include "model/search_check.h"

#include <gtest/gtest.h>

#include <memory>

namespace Kestrona::Model {

namespace {

using namespace Data::MemoryResident;

constexpr int kSteps = 6000;
constexpr std::int32_t kManyRecords = 16;

class RandomModel : public testing::TestWithParam<unsigned> {
protected:
    RandomModel() { Build(*store, ThePlan()); }

    void Step() {
        const std::int32_t format = mirror.Draw(store->GetFormatCount());
        const std::int32_t kind = mirror.Draw(100);
        const std::int32_t size = mirror.TheTwin().Size(format);
        if (size == 0 || (kind < 30 && size < kManyRecords)) {
            mirror.Chance(50) ? mirror.Insert(format) : mirror.Create(format);
        } else if (kind < 40) {
            mirror.Delete(format);
        } else if (kind < 75) {
            mirror.Write(format);
        } else if (kind < 80) {
            mirror.CopyRow(format);
        } else if (kind < 86) {
            mirror.SwapRows(format);
        } else if (kind < 92) {
            mirror.CopyList(format);
        } else if (kind < 93 && mirror.Chance(20)) {
            mirror.Clear(format);
        } else {
            EXPECT_EQ(FindSearchDifference(*store, mirror.TheTwin(), mirror.Random()), "");
        }
    }

    Fixtures::FreshProcess process;
    Fixtures::RecordingMessages& messages = Fixtures::InstallRecordingMessages();
    std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
    Mirror mirror{*store, ThePlan(), GetParam()};
};

TEST_P(RandomModel, StoreAndTwinAgreeAfterEveryStep) {
    for (int step = 0; step < kSteps; ++step) {
        Step();
        ASSERT_EQ(mirror.Problems() + StoreDifference(*store, mirror.TheTwin()), "")
            << "seed " << GetParam() << " step " << step << mirror.LastOperations();
        ASSERT_FALSE(HasFailure()) << "seed " << GetParam() << " step " << step << mirror.LastOperations();
    }
    // A record that does not exist is never read.
    EXPECT_TRUE(messages.boxes.empty()) << testing::PrintToString(messages.boxes.front().text);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomModel, testing::Range(1U, 9U));

} // namespace

} // namespace Kestrona::Model
