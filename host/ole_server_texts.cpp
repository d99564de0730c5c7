#include <kestrona/host/ole_server_texts.h>

namespace Kestrona::Host {

void OleServerTexts::GetServerTexts(std::wstring& first, std::wstring& second) {
    first = first_;
    second = second_;
}

void OleServerTexts::SetServerTexts(const wchar_t* first, const wchar_t* second) {
    first_ = first == nullptr ? L"" : first;
    second_ = second == nullptr ? L"" : second;
}

} // namespace Kestrona::Host
