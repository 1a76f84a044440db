#include "xmo_writer.h"

#include <unistd.h>

#include <utility>

const char kObjectRoot[] = "OA&M Configuration ver. 1.0 - Object";
const char kExportRoot[] = "OA&M Configuration ver. 1.0";

CXmlExport::~CXmlExport() {
    if (stream_ != nullptr) fclose(stream_);
}

int CXmlExport::Open(const char* path, const char* rootName, int descriptor) noexcept {
    stream_ = descriptor >= 0 ? fdopen(descriptor, "w") : fopen(path, "we");
    if (stream_ == nullptr) {
        if (descriptor >= 0) close(descriptor);
        return -1;
    }
    depth_ = 0;
    path_ = XmoPath::Root();
    fputs_unlocked("<?XML version=\"1.0\"?>\n", stream_);
    return BegDir(rootName);
}

int CXmlExport::BegDir(const char* name) noexcept {
    if (stream_ == nullptr || !path_.Append(name)) return -1;
    Line({"<", name, ">\n"});
    ++depth_;
    return Answer();
}

int CXmlExport::SetNextKeyword(const char* name, const char* value) noexcept {
    if (stream_ == nullptr) return -1;
    Line({"<", name, ">", value != nullptr ? value : "", "</>\n"});
    return Answer();
}

int CXmlExport::EndDir(const char* name) noexcept {
    if (stream_ == nullptr || depth_ < 1) return -1;
    const char* last = path_.CutLast();
    if (name != nullptr && strcmp(name, last) != 0) {
        path_.PutBack();
        return -1;
    }
    --depth_;
    Line({"</", last, ">\n"});
    return Answer();
}

int CXmlExport::Close() noexcept { return CloseStream(false); }

int CXmlExport::CloseSynced() noexcept { return CloseStream(true); }

int CXmlExport::CloseStream(bool sync) noexcept {
    if (stream_ == nullptr) return -1;
    bool closed = Answer() == 0;
    while (closed && depth_ > 0) closed = EndDir(nullptr) == 0;
    FILE* stream = std::exchange(stream_, nullptr);
    if (sync) closed = fflush(stream) == 0 && fsync(fileno(stream)) == 0 && closed;
    return fclose(stream) == 0 && closed ? 0 : -1;
}

// Put together first: the stream takes longer for each piece than a copy of it.
void CXmlExport::Line(std::initializer_list<std::string_view> parts) noexcept {
    constexpr std::string_view kIndent = "   ";
    char line[512];
    size_t length = 0;
    const auto add = [&](std::string_view part) {
        if (part.size() > sizeof line - length) {
            (void)fwrite_unlocked(line, 1, std::exchange(length, 0), stream_);
        }
        if (part.size() > sizeof line) {
            (void)fwrite_unlocked(part.data(), 1, part.size(), stream_);
        } else {
            length += part.copy(line + length, part.size());
        }
    };
    for (int i = 0; i < depth_; ++i) add(kIndent);
    for (const std::string_view part : parts) add(part);
    (void)fwrite_unlocked(line, 1, length, stream_);
}
