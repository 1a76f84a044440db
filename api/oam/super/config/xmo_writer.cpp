#include "xmo_writer.h"

#include <unistd.h>

#include <utility>

const char kObjectRoot[] = "OA&M Configuration ver. 1.0 - Object";
const char kExportRoot[] = "OA&M Configuration ver. 1.0";

CXmlExport::~CXmlExport() {
    if (stream_ != nullptr) fclose(stream_);
}

int CXmlExport::Open(const char* path, const char* rootName) noexcept {
    stream_ = fopen(path, "we");
    if (stream_ == nullptr) return -1;
    depth_ = 0;
    path_ = XmoPath::Root();
    fputs_unlocked("<?XML version=\"1.0\"?>\n", stream_);
    return BegDir(rootName);
}

int CXmlExport::BegDir(const char* name) noexcept {
    if (stream_ == nullptr || !path_.Append(name)) return -1;
    Line("<", name, ">\n");
    ++depth_;
    return Answer();
}

int CXmlExport::SetNextKeyword(const char* name, const char* value) noexcept {
    if (stream_ == nullptr) return -1;
    Line("<", name, ">");
    fputs_unlocked(value != nullptr ? value : "", stream_);
    fputs_unlocked("</>\n", stream_);
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
    Line("</", last, ">\n");
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

void CXmlExport::Line(const char* before, const char* name, const char* after) noexcept {
    for (int i = 0; i < depth_; ++i) fputs_unlocked("   ", stream_);
    for (const char* part : {before, name, after}) fputs_unlocked(part, stream_);
}
