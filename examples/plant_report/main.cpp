// Loads a definition with the default host and lists its formats: plant_report DEFINITION

#include <kestrona/host/default_host.h>
#include <kestrona/kestrona.h>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: plant_report DEFINITION\n", stderr);
        return 2;
    }
    Kestrona::Host::DefaultHost host;
    if (host.LoadDefinition(argv[1]) != Kestrona::Host::LoadOutcome::Ok) {
        return 1;
    }
    auto& store = host.Store();
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        std::printf("%s: %d fields\n", Kestrona::ToUtf8(store.GetDbName(format)).c_str(), store.GetDbFields(format));
    }
}
