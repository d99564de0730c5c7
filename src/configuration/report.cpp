#include "configuration/report.h"

#include <kestrona/definition_load.h>
#include <kestrona/execution_state.h>
#include <kestrona/host_settings.h>

#include <cstdlib>

namespace Kestrona::Configuration {

std::wstring Message(std::int32_t id) {
    return MessageManager::getInstance()->GetMessage(id);
}

std::wstring JoinedMessages(std::initializer_list<std::int32_t> ids) {
    std::wstring text;
    for (const std::int32_t id : ids) {
        text += Message(id);
    }
    return text;
}

bool Fail(const std::wstring& text) {
    return Fail(text, GetMessageCaption(), kMessageStyleError);
}

bool Fail(const std::wstring& text, const std::wstring& caption, std::int32_t style) {
    MessageManager::getInstance()->ShowMessage(nullptr, text, caption, style);
    ErrorExit();
    return false;
}

} // namespace Kestrona::Configuration

void ErrorExit() {
    if (!Kestrona::ExecutionState::Instance().get_IsRunningHeadless()) {
        std::exit(1);
    }
}

void CompileFail(const std::wstring& text) {
    Kestrona::Configuration::Fail(text, std::wstring(), kMessageStyleError);
}
