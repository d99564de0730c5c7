#include "configuration/compiled_configuration.h"

#include <kestrona/services.h>

namespace Kestrona::Configuration {

using Data::MemoryResident::MemoryResidentData;

namespace {

bool ReportUnusable(const std::wstring& path) {
    MessageManager::getInstance()->DisplayGenericUnableToRead(path);
    return false;
}

} // namespace

bool ReadCompiledConfiguration(MemoryResidentData&, const std::wstring& path, INativeConfigWrapper*,
                               IInformationFeedback*, IOleServerManager*) {
    return ReportUnusable(path);
}

bool WriteCompiledConfiguration(MemoryResidentData&, const std::wstring& path, IOleServerManager*) {
    return ReportUnusable(path);
}

} // namespace Kestrona::Configuration
