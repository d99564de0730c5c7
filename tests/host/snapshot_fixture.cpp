#include "host/snapshot_fixture.h"

#include "store/process_state.h"

#include <kestrona/classes.h>
#include <kestrona/matrices.h>
#include <kestrona/records.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <sstream>

namespace Kestrona::Host {

const char* const kSmallPlant = R"(
define FACTOR = 2.5
help 7 "Line one\nline two \"quoted\" # no comment"
table Colours { "red" = 1 "grün 🎨" = 2 }
substitute "machine" -> "work centre"
format Product "Products" {
    key Number
    field Number : INTEGER | UNIQUE
    field Name length 40 : TEXT
    field Weight = 1.5 : REAL
    field Twice : REAL | EVALUATE "{#Weight} * 2.5"
    field Colour : REFERENCE | TABLE(Colours)
    field Made : DATE AND TIME
    field Takes = 8h : DURATION
    field Sold : TOGGLE
    field Scratch : INTEGER | NOT SAVED
    field Likes : MATRIX | REFERENCE | AUTO LIST(Product(Number)) | DATABASE(Product(Number))
}
format Order {
    extension ord
    key Number
    field Number : INTEGER | UNIQUE
    field Product : REFERENCE | DATABASE(Product(Number))
    field Name : REFERENCE | DATABASE(Product(Name)) | ADDITIONAL REFERENCE(Product)
}
format Draft {
    key Number
    field Number : INTEGER | UNIQUE | EXCLUDE FROM DB
    field Text : TEXT
    field Twice : REAL | EVALUATE "{#Number} * 2"
}
)";

SnapshotTest::SnapshotTest() {
    Restart();
}

SnapshotTest::~SnapshotTest() {
    host_.reset();
    ResetProcessStateForTests();
}

void SnapshotTest::Restart() {
    host_.reset();
    ResetProcessStateForTests();
    DefaultHostOptions options;
    options.output = [this](std::string_view text) {
        out_ += text;
    };
    options.locale = {"C", "C"};
    host_ = std::make_unique<DefaultHost>(std::move(options));
}

std::size_t SnapshotTest::FilesInFolder() const {
    const std::filesystem::directory_iterator files(folder_.Path());
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

std::unique_ptr<Store> SnapshotTest::MakeStore(const std::string& definition) {
    auto store = host_->CreateStore();
    EXPECT_EQ(host_->FillFromFile(definition, *store), LoadOutcome::Ok) << out_;
    return store;
}

std::unique_ptr<Store> SnapshotTest::MakeSmallStore(unsigned seed) {
    folder_.Write("small.ksdef", kSmallPlant);
    auto store = MakeStore(Path("small.ksdef"));
    std::filesystem::remove(Path("small.ksdef"));
    FillByChance(*store, 3, seed);
    return store;
}

namespace {

class Filler {
public:
    Filler(Store& store, unsigned seed) : store_(store), random_(seed) {}

    void Fill(std::int32_t format, std::int32_t records) {
        for (std::int32_t i = 0; i < records; ++i) {
            const std::int32_t record = KSDLL_CreateRecord(store_, format);
            for (std::int32_t field = 0; field < store_.GetDbFields(format); ++field) {
                if (field != store_.GetDbKey(format) && Upto(4) != 0) {
                    FillCell(format, field, record);
                }
            }
        }
    }

private:
    std::int32_t Upto(std::int32_t most) { return std::uniform_int_distribution<std::int32_t>(0, most)(random_); }

    double Value() {
        constexpr double kSpecial[] = {0.0, -0.0, -1.0, 1e300, std::numeric_limits<double>::denorm_min(), 1.0};
        return Upto(3) == 0 ? kSpecial[Upto(5)] : static_cast<double>(Upto(2'000'000) - 1'000'000) / 8.0;
    }

    std::wstring Text() {
        constexpr wchar_t kLetters[] = L"aZ \u00fc\u4e2d\n\"\U0001F3A8\U0010FFFF|#";
        std::wstring text;
        for (std::int32_t i = Upto(12); i > 0; --i) {
            text += kLetters[Upto(static_cast<std::int32_t>(std::size(kLetters)) - 2)];
        }
        return text;
    }

    void FillCell(std::int32_t format, std::int32_t field, std::int32_t record) {
        if ((store_.GetDbType(format, field) & TypeBit::kMatrix) != 0) {
            const std::int32_t size = Upto(5);
            const std::int32_t id = KSDLL_CreateMatrix(store_, static_cast<std::uint32_t>(size), format, field, record);
            for (std::int32_t i = 0; i < size && id >= 0; ++i) {
                KSDLL_SetMatrixValue(id, static_cast<std::uint32_t>(i), Value());
            }
            return;
        }
        store_.SetDbString(format, field, record, Text());
        store_.SetDbValue(format, field, record, Value());
    }

    Store& store_;
    std::mt19937 random_;
};

void PrintCell(std::ostream& out, Store& store, std::int32_t format, std::int32_t field, std::int32_t record) {
    if ((store.GetDbType(format, field) & TypeBit::kMatrix) != 0) {
        const std::int32_t size = KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(store, format, field, record));
        out << '[' << size;
        for (std::int32_t i = 0; i < size; ++i) {
            out << ' ' << KSDLL_GetMatrixValue(store, format, field, record, static_cast<std::uint32_t>(i));
        }
        out << ']';
    } else {
        out << store.GetDbValue(format, field, record) << '"' << ToUtf8(store.GetDbString(format, field, record))
            << '"';
    }
}

} // namespace

void FillByChance(Store& store, std::int32_t records, unsigned seed) {
    Filler filler(store, seed);
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        filler.Fill(format, records);
    }
}

std::string CellsOf(Store& store) {
    std::ostringstream out;
    out.precision(17);
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        if (store.ClassDefined(format, store.GetDbKey(format), Classes::kExcludeFromDb)) {
            continue;
        }
        for (std::int32_t record = 0; record < store.GetCurrentDbSize(format); ++record) {
            out << format << '/' << record << ':';
            for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
                if (!store.ClassDefined(format, field, Classes::kNotPersisted)) {
                    PrintCell(out << ' ', store, format, field, record);
                }
            }
            out << '\n';
        }
    }
    return out.str();
}

std::string Difference(const std::string& found, const std::string& expected) {
    if (found == expected) {
        return {};
    }
    const auto at = static_cast<std::size_t>(std::ranges::mismatch(found, expected).in1 - found.begin());
    const std::size_t start = at < 60 ? 0 : at - 60;
    return "found ..." + found.substr(start, 120) + "...\nexpected ..." + expected.substr(start, 120) + "...";
}

bool HasChanges(Store& store) {
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        if (store.GetDbChanged(format)) {
            return true;
        }
    }
    return false;
}

std::string WithoutStamp(std::string bytes) {
    constexpr std::size_t kStampAt = 26;
    constexpr std::size_t kStampSize = 8;
    return bytes.size() < kStampAt + kStampSize ? bytes : bytes.erase(kStampAt, kStampSize);
}

} // namespace Kestrona::Host
