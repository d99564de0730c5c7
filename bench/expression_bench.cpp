// Expressions over many records, each beside a loop written by hand, muParser and SQLite in memory; and parse times.
//
// "Single" evaluates record by record, "Block" a whole column at once, "Field" and "FieldBlock" read a calculated
// field. muParser takes the values of a record from four variables, or in "MuParserBulk" from the columns. SQLite steps
// through a SELECT of the same expression over the same values. The argument is the number of records, or of
// characters; "each" is the time of one record, or of one parse.
#include "fixtures/schema.h"
#include "measure.h"
#include "sqlite_database.h"

#include <kestrona/expression_parsing.h>
#include <kestrona/store.h>

#include <muParser.h>

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Kestrona::Bench {
namespace {

constexpr std::int32_t kChain = 10;

// The fields: a key, four numbers, a text, then the calculated ones.
constexpr std::int32_t kNumbers = 4;
constexpr std::int32_t kText = 1 + kNumbers;
constexpr std::int32_t kFirstCalculated = kText + 1;

enum Case : std::int32_t {
    kArithmetic,
    kLogic,
    kPolynomial,
    kChained,
    kTextComparison,
};

struct Subject {
    const wchar_t* expression;
    const char* sql;
    const char* mu_parser;
};

// The chained one is the tenth field of a row that starts with {#A}. muParser does not compare texts.
constexpr const char* kSum = "((((((((((a + b) + b) + b) + b) + b) + b) + b) + b) + b) + b)";
constexpr const char* kFormula = "3 * a * a * a - 2 * b * b + a * b - 5 * c + 7";
constexpr Subject kSubjects[] = {
    {L"({#A} + {#B}) * 2 - {#C} / 4", "(a + b) * 2 - c / 4", "(a + b) * 2 - c / 4"},
    {L"(({#A} > 40) && ({#B} <= {#C})) || ({#D} == 3)", "((a > 40) and (b <= c)) or (d = 3)",
     "((a > 40) && (b <= c)) || (d == 3)"},
    {L"3 * {#A} * {#A} * {#A} - 2 * {#B} * {#B} + {#A} * {#B} - 5 * {#C} + 7", kFormula, kFormula},
    {nullptr, kSum, kSum},
    {L"\"{$Name}\" == \"part 17\"", "name = 'part 17'", nullptr},
};

std::int32_t FieldOf(Case subject) {
    return kFirstCalculated + kChain - 1 + (subject == kChained ? 0 : 1 + subject);
}

constexpr std::int32_t kFields = kFirstCalculated + kChain + 1 + kTextComparison;

struct Values {
    std::vector<double> numbers[kNumbers];
    std::vector<std::wstring> names;

    [[nodiscard]] std::size_t Count() const { return names.size(); }
};

Values MakeValues(std::int64_t records) {
    Values made;
    std::mt19937 random(11);
    for (std::vector<double>& column : made.numbers) {
        column.resize(static_cast<std::size_t>(records));
        for (double& value : column) {
            value = static_cast<double>(random() % 100);
        }
    }
    for (std::int64_t record = 0; record < records; ++record) {
        made.names.push_back(L"part " + std::to_wstring(random() % 100));
    }
    return made;
}

const Values& ValuesOf(std::int64_t records) {
    return OfSize<MakeValues>(records);
}

void Calculate(MemoryResidentData& store, std::int32_t field, const std::wstring& expression) {
    INativeExpression* const compiled = KSDLL_CreateFieldExpression(store, 0, field, expression, false, nullptr);
    if (compiled == nullptr) {
        throw std::runtime_error("an expression of the benchmark does not compile");
    }
    store.SetDbEvaluateExpression(0, field, compiled);
}

void DeclareFields(MemoryResidentData& store) {
    std::vector<Fixtures::Field> fields{Fixtures::Number(L"Key")};
    for (std::int32_t number = 0; number < kNumbers; ++number) {
        fields.push_back(Fixtures::Number(std::wstring(1, static_cast<wchar_t>(L'A' + number))));
    }
    fields.push_back(Fixtures::Text(L"Name"));
    for (std::int32_t field = kFirstCalculated; field < kFields; ++field) {
        fields.push_back(Fixtures::Calculated(L"F" + std::to_wstring(field - kFirstCalculated)));
    }
    for (Fixtures::Field& field : fields) {
        field.classes.push_back(Classes::kExcludeFromDb);
    }
    Fixtures::AddTable(store, L"Parts", fields);
}

void DeclareCalculations(MemoryResidentData& store) {
    for (std::int32_t link = 0; link < kChain; ++link) {
        const std::wstring before = link == 0 ? L"A" : L"F" + std::to_wstring(link - 1);
        Calculate(store, kFirstCalculated + link, L"{#" + before + L"} + {#B}");
    }
    for (const Case subject : {kArithmetic, kLogic, kPolynomial, kTextComparison}) {
        Calculate(store, FieldOf(subject), kSubjects[subject].expression);
    }
}

std::unique_ptr<MemoryResidentData> MakeStore(std::int64_t records) {
    auto made = CreateMemoryResidentData();
    DeclareFields(*made);
    DeclareCalculations(*made);
    const auto count = static_cast<std::int32_t>(records);
    made->SetCurrentDbSize(0, count);
    const Values& values = ValuesOf(records);
    for (std::int32_t record = 0; record < count; ++record) {
        const auto at = static_cast<std::size_t>(record);
        for (std::int32_t number = 0; number < kNumbers; ++number) {
            made->SetDbValue(0, 1 + number, record, values.numbers[number][at]);
        }
        made->SetDbString(0, kText, record, values.names[at]);
    }
    return made;
}

MemoryResidentData& StoreOf(std::int64_t records) {
    return *OfSize<MakeStore>(records);
}

std::unique_ptr<Database> MakeDatabase(std::int64_t records) {
    auto made = std::make_unique<Database>();
    made->Execute("create table parts (a real, b real, c real, d real, name text); begin");
    const Statement insert = made->Prepare("insert into parts values (?, ?, ?, ?, ?)");
    const Values& values = ValuesOf(records);
    for (std::size_t record = 0; record < values.Count(); ++record) {
        for (int number = 0; number < kNumbers; ++number) {
            sqlite3_bind_double(insert.get(), 1 + number, values.numbers[number][record]);
        }
        const std::string name(values.names[record].begin(), values.names[record].end());
        sqlite3_bind_text(insert.get(), 1 + kNumbers, name.c_str(), -1, SQLITE_TRANSIENT);
        RunOnce(insert);
    }
    made->Execute("commit");
    return made;
}

Database& DatabaseOf(std::int64_t records) {
    return *OfSize<MakeDatabase>(records);
}

std::unique_ptr<INativeExpression> Compiled(MemoryResidentData& store, Case subject) {
    const wchar_t* const text = subject == kChained ? L"{#F9}" : kSubjects[subject].expression;
    return std::unique_ptr<INativeExpression>(KSDLL_CreateExpression(store, 0, text, false, nullptr));
}

// The expression for one record, as a compiler sees it.
double ByHandAt(const Values& values, Case subject, std::size_t i) {
    const auto& [a, b, c, d] = values.numbers;
    switch (subject) {
    case kArithmetic:
        return (a[i] + b[i]) * 2 - c[i] / 4;
    case kLogic:
        return (a[i] > 40 && b[i] <= c[i]) || d[i] == 3 ? 1.0 : 0.0;
    case kPolynomial:
        return 3 * a[i] * a[i] * a[i] - 2 * b[i] * b[i] + a[i] * b[i] - 5 * c[i] + 7;
    case kChained:
        return a[i] + b[i] + b[i] + b[i] + b[i] + b[i] + b[i] + b[i] + b[i] + b[i] + b[i];
    case kTextComparison:
        break;
    }
    return values.names[i] == L"part 17" ? 1.0 : 0.0;
}

template <Case kSubject>
double SumByHand(const Values& values) {
    double sum = 0.0;
    for (std::size_t i = 0; i < values.Count(); ++i) {
        sum += ByHandAt(values, kSubject, i);
    }
    return sum;
}

double Total(const std::vector<double>& values) {
    double sum = 0.0;
    for (const double value : values) {
        sum += value;
    }
    return sum;
}

// Every road must come to the sum that the loop by hand comes to.
template <Case kSubject, typename Road>
void Measure(benchmark::State& state, Road road) {
    double sum = 0.0;
    for (auto _ : state) {
        sum = road();
        benchmark::DoNotOptimize(sum);
    }
    if (sum != SumByHand<kSubject>(ValuesOf(state.range(0)))) {
        state.SkipWithError("the sum is not that of the loop by hand");
    }
    CountEach(state, static_cast<double>(state.range(0)));
}

template <Case kSubject>
void ByHand(benchmark::State& state) {
    const Values& values = ValuesOf(state.range(0));
    Measure<kSubject>(state, [&] { return SumByHand<kSubject>(values); });
}

template <Case kSubject>
void Single(benchmark::State& state) {
    MemoryResidentData& store = StoreOf(state.range(0));
    const std::unique_ptr<INativeExpression> expression = Compiled(store, kSubject);
    const auto records = static_cast<std::int32_t>(state.range(0));
    Measure<kSubject>(state, [&] {
        double sum = 0.0;
        for (std::int32_t record = 0; record < records; ++record) {
            sum += KSDLL_EvaluateExpression(store, record, expression.get(), nullptr);
        }
        return sum;
    });
}

template <Case kSubject>
void Block(benchmark::State& state) {
    MemoryResidentData& store = StoreOf(state.range(0));
    const std::unique_ptr<INativeExpression> expression = Compiled(store, kSubject);
    std::vector<double> values(static_cast<std::size_t>(state.range(0)));
    Measure<kSubject>(state, [&] {
        expression->EvaluateBlock(store, 0, static_cast<std::int32_t>(values.size()), values.data());
        return Total(values);
    });
}

template <Case kSubject>
void Field(benchmark::State& state) {
    MemoryResidentData& store = StoreOf(state.range(0));
    const auto records = static_cast<std::int32_t>(state.range(0));
    Measure<kSubject>(state, [&] {
        double sum = 0.0;
        for (std::int32_t record = 0; record < records; ++record) {
            sum += store.GetDbValue(0, FieldOf(kSubject), record);
        }
        return sum;
    });
}

template <Case kSubject>
void FieldBlock(benchmark::State& state) {
    MemoryResidentData& store = StoreOf(state.range(0));
    std::vector<double> values(static_cast<std::size_t>(state.range(0)));
    Measure<kSubject>(state, [&] {
        store.GetDbColumn(0, FieldOf(kSubject))->ReadBlock(0, static_cast<std::int32_t>(values.size()), values.data());
        return Total(values);
    });
}

template <Case kSubject>
void MuParser(benchmark::State& state) {
    const Values& values = ValuesOf(state.range(0));
    std::array<double, kNumbers> variables{};
    mu::Parser parser;
    for (std::size_t number = 0; number < kNumbers; ++number) {
        parser.DefineVar(std::string(1, static_cast<char>('a' + number)), &variables[number]);
    }
    parser.SetExpr(kSubjects[kSubject].mu_parser);
    Measure<kSubject>(state, [&] {
        double sum = 0.0;
        for (std::size_t record = 0; record < values.Count(); ++record) {
            for (std::size_t number = 0; number < kNumbers; ++number) {
                variables[number] = values.numbers[number][record];
            }
            sum += parser.Eval();
        }
        return sum;
    });
}

template <Case kSubject>
void MuParserBulk(benchmark::State& state) {
    Values values = ValuesOf(state.range(0));
    mu::Parser parser;
    for (std::size_t number = 0; number < kNumbers; ++number) {
        parser.DefineVar(std::string(1, static_cast<char>('a' + number)), values.numbers[number].data());
    }
    parser.SetExpr(kSubjects[kSubject].mu_parser);
    std::vector<double> results(values.Count());
    Measure<kSubject>(state, [&] {
        parser.Eval(results.data(), static_cast<int>(results.size()));
        return Total(results);
    });
}

template <Case kSubject>
void Sqlite(benchmark::State& state) {
    const Statement select =
        DatabaseOf(state.range(0)).Prepare("select " + std::string(kSubjects[kSubject].sql) + " from parts");
    Measure<kSubject>(state, [&] {
        double sum = 0.0;
        while (sqlite3_step(select.get()) == SQLITE_ROW) {
            sum += sqlite3_column_double(select.get(), 0);
        }
        sqlite3_reset(select.get());
        return sum;
    });
}

#define KS_ROADS(subject)                                                                                              \
    BENCHMARK_TEMPLATE(ByHand, subject)->Apply(PeerSizes);                                                             \
    BENCHMARK_TEMPLATE(Single, subject)->Apply(PeerSizes);                                                             \
    BENCHMARK_TEMPLATE(Block, subject)->Apply(PeerSizes);                                                              \
    BENCHMARK_TEMPLATE(Field, subject)->Apply(PeerSizes);                                                              \
    BENCHMARK_TEMPLATE(FieldBlock, subject)->Apply(PeerSizes);                                                         \
    BENCHMARK_TEMPLATE(Sqlite, subject)->Apply(PeerSizes)
#define KS_MUPARSER(subject)                                                                                           \
    BENCHMARK_TEMPLATE(MuParser, subject)->Apply(PeerSizes);                                                           \
    BENCHMARK_TEMPLATE(MuParserBulk, subject)->Apply(PeerSizes)

KS_ROADS(kArithmetic);
KS_MUPARSER(kArithmetic);
KS_ROADS(kLogic);
KS_MUPARSER(kLogic);
KS_ROADS(kPolynomial);
KS_MUPARSER(kPolynomial);
KS_ROADS(kChained);
KS_MUPARSER(kChained);
KS_ROADS(kTextComparison);
BENCHMARK_TEMPLATE(Single, kArithmetic)->Apply(OtherGrowthSizes);
BENCHMARK_TEMPLATE(Block, kArithmetic)->Apply(OtherGrowthSizes);

// A text made of a number and of fields.
void MakeText(benchmark::State& state) {
    MemoryResidentData& store = StoreOf(state.range(0));
    const std::unique_ptr<INativeExpression> expression(
        KSDLL_CreateExpression(store, 0, L"Part {#A}: {$Name} of {$Name}", true, nullptr));
    const auto records = static_cast<std::int32_t>(state.range(0));
    std::wstring text;
    for (auto _ : state) {
        std::size_t length = 0;
        for (std::int32_t record = 0; record < records; ++record) {
            KSDLL_EvaluateExpression(store, record, expression.get(), &text);
            length += text.size();
        }
        benchmark::DoNotOptimize(length);
    }
    CountEach(state, static_cast<double>(state.range(0)));
}

BENCHMARK(MakeText)->Apply(PeerSizes);

enum class ParseKind : std::int64_t {
    Constants,
    Fields,
    Brackets
};

// A text of about `length` characters; the brackets are at most 100 deep.
std::wstring ParseText(ParseKind kind, std::size_t length) {
    std::wstring text = L"1.5";
    if (kind == ParseKind::Fields) {
        text = L"{#A}";
    }
    const std::size_t deep = kind == ParseKind::Brackets ? length / 3 : 0;
    while (text.size() + 2 * deep < length) {
        text += kind == ParseKind::Fields ? L" + {#B}" : L" + 22";
    }
    return std::wstring(deep, L'(') + text + std::wstring(deep, L')');
}

constexpr std::int64_t kParseRecords = 10000;

void Parse(benchmark::State& state, ParseKind kind) {
    MemoryResidentData& store = StoreOf(kParseRecords);
    const std::wstring text = ParseText(kind, static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        const std::unique_ptr<INativeExpression> expression(KSDLL_CreateExpression(store, 0, text, false, nullptr));
        if (expression == nullptr) {
            state.SkipWithError("an expression of the benchmark does not compile");
            break;
        }
    }
    CountEach(state, 1);
}

BENCHMARK_CAPTURE(Parse, constants, ParseKind::Constants)->Arg(50)->Arg(500)->Arg(5000)->Arg(15000);
BENCHMARK_CAPTURE(Parse, fields, ParseKind::Fields)->Arg(50)->Arg(500)->Arg(5000)->Arg(15000);
BENCHMARK_CAPTURE(Parse, brackets, ParseKind::Brackets)->Arg(50)->Arg(150)->Arg(300);

// The same fields, named by one letter, and their first value, since muParser parses when it is first asked for one.
void ParseMuParser(benchmark::State& state) {
    std::string text;
    for (const wchar_t unit : ParseText(ParseKind::Fields, static_cast<std::size_t>(state.range(0)))) {
        if (unit == L'A' || unit == L'B') {
            text += static_cast<char>(unit - L'A' + 'a');
        } else if (unit == L' ' || unit == L'+') {
            text += static_cast<char>(unit);
        }
    }
    std::array<double, 2> variables{1.0, 2.0};
    mu::Parser parser;
    parser.DefineVar("a", &variables[0]);
    parser.DefineVar("b", &variables[1]);
    for (auto _ : state) {
        parser.SetExpr(text);
        benchmark::DoNotOptimize(parser.Eval());
    }
    CountEach(state, 1);
}

BENCHMARK(ParseMuParser)->Arg(50)->Arg(500)->Arg(5000);

// The least that reading an expression takes: its words, one after the other.
void SplitIntoWords(benchmark::State& state) {
    const std::wstring text = ParseText(ParseKind::Fields, static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::vector<std::wstring_view> words;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = std::min(text.find(L' ', at), text.size());
            words.emplace_back(text.data() + at, end - at);
            at = end + 1;
        }
        benchmark::DoNotOptimize(words.data());
    }
    CountEach(state, 1);
}

BENCHMARK(SplitIntoWords)->Arg(50)->Arg(500)->Arg(5000);

void ParseFromCache(benchmark::State& state) {
    MemoryResidentData& store = StoreOf(kParseRecords);
    const std::wstring text = ParseText(ParseKind::Fields, 50);
    for (auto _ : state) {
        benchmark::DoNotOptimize(KSDLL_CreateExpressionFromCache(store, 0, text, false, nullptr));
    }
    CountEach(state, 1);
    KSDLL_FreeExpressionCache();
}

BENCHMARK(ParseFromCache);

} // namespace
} // namespace Kestrona::Bench
