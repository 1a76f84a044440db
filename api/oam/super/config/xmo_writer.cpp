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
    if (fputs("<?XML version=\"1.0\"?>\n", stream_) < 0) return -1;
    return BegDir(rootName);
}

int CXmlExport::BegDir(const char* name) noexcept {
    if (stream_ == nullptr || !path_.Append(name)) return -1;
    if (!Indent() || fprintf(stream_, "<%s>\n", name) < 0) return -1;
    ++depth_;
    return 0;
}

int CXmlExport::SetNextKeyword(const char* name, const char* value) noexcept {
    if (stream_ == nullptr || !Indent()) return -1;
    const bool written = fputc_unlocked('<', stream_) != EOF &&
                         fputs_unlocked(name, stream_) >= 0 &&
                         fputc_unlocked('>', stream_) != EOF &&
                         fputs_unlocked(value != nullptr ? value : "", stream_) >= 0 &&
                         fputs_unlocked("</>\n", stream_) >= 0;
    return written && ferror_unlocked(stream_) == 0 ? 0 : -1;
}

int CXmlExport::EndDir(const char* name) noexcept {
    if (stream_ == nullptr || depth_ < 1) return -1;
    const char* last = path_.CutLast();
    if (name != nullptr && strcmp(name, last) != 0) {
        path_.PutBack();
        return -1;
    }
    --depth_;
    return Indent() && fprintf(stream_, "</%s>\n", last) >= 0 ? 0 : -1;
}

int CXmlExport::Close() noexcept { return CloseStream(false); }

int CXmlExport::CloseSynced() noexcept { return CloseStream(true); }

int CXmlExport::CloseStream(bool sync) noexcept {
    if (stream_ == nullptr) return -1;
    bool closed = true;
    while (closed && depth_ > 0) closed = EndDir(nullptr) == 0;
    FILE* stream = std::exchange(stream_, nullptr);
    if (sync) closed = fflush(stream) == 0 && fsync(fileno(stream)) == 0 && closed;
    return fclose(stream) == 0 && closed ? 0 : -1;
}

bool CXmlExport::Indent() noexcept {
    for (int i = 0; i < depth_; ++i) {
        if (fputs_unlocked("   ", stream_) < 0) return false;
    }
    return true;
}
