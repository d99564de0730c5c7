#include <kestrona/host/text_sink.h>

#include <memory>

namespace Kestrona::Host {

namespace {

void Write(std::FILE* stream, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

} // namespace

TextSink StreamSink(std::FILE* stream) {
    if (stream == nullptr) {
        return {};
    }
    return [stream](std::string_view text) {
        Write(stream, text);
    };
}

TextSink FileSink(const std::string& path) {
    std::FILE* opened = std::fopen(path.c_str(), "ae");
    if (opened == nullptr) {
        return {};
    }
    const std::shared_ptr<std::FILE> file(opened, [](std::FILE* stream) { std::fclose(stream); });
    return [file](std::string_view text) {
        Write(file.get(), text);
    };
}

} // namespace Kestrona::Host
