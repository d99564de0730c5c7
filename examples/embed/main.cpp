// Embeds kestrona: loads a definition, makes records, reads a calculated field, and asks what has changed.

#include <kestrona/host/default_host.h>
#include <kestrona/kestrona.h>

#include <cstdio>
#include <utility>

static_assert(KESTRONA_VERSION_AT_LEAST(0, 1, 0));

namespace {

constexpr char kDefinition[] = R"(
format Orders {
    key Number

    field Number   : INTEGER | UNIQUE | AUTOMATIC KEY
    field Quantity : INTEGER
    field Price    : REAL | FORMAT(8.2)
    field Amount   : REAL | EVALUATE "{#Quantity} * {#Price}" | FORMAT(8.2)
}
)";

} // namespace

int main() {
    Kestrona::Host::DefaultHostOptions options;
    options.program = "embed";
    options.reader = [](const std::string&) {
        return kDefinition;
    }; // without it, a path is read from the disk
    Kestrona::Host::DefaultHost host(std::move(options));
    if (host.LoadDefinition("orders.ksdef") != Kestrona::Host::LoadOutcome::Ok) {
        return 1; // what is wrong stands on stderr
    }
    auto& store = host.Store();
    const std::int32_t orders = KSDLL_FindFormatImpl(store, L"Orders");
    const std::int32_t quantity = KSDLL_FindField(store, orders, L"Quantity", nullptr);
    const std::int32_t price = KSDLL_FindField(store, orders, L"Price", nullptr);
    const std::int32_t amount = KSDLL_FindField(store, orders, L"Amount", nullptr);

    for (const double pieces : {10.0, 20.0, 30.0}) {
        const std::int32_t record = KSDLL_CreateRecord(store, orders); // gets the next number
        store.SetDbValue(orders, quantity, record, pieces);
        store.SetDbValue(orders, price, record, 2.5);
    }
    store.ResetDbChanged(orders); // as after saving: from here on, what changes is new

    store.SetDbValue(orders, quantity, store.LookupKeyRecord(orders, 2.0), 25.0);
    std::printf("kestrona %s\n", Kestrona::LibraryVersion());
    for (std::int32_t record = 0; record < store.GetCurrentDbSize(orders); ++record) {
        std::printf("order %.0f: %.2f%s\n", store.GetDbValue(orders, 0, record),
                    store.GetDbValue(orders, amount, record),
                    store.GetRecordChanged(orders, record) == 2 ? " (changed)" : "");
    }
}
