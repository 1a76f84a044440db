#include "board_trace.h"

#include <algorithm>
#include <iterator>

#include "base/text.h"
#include "log_file.h"
#include "oam/entry.h"

namespace {

// Kept: a finished stop is left out, while finished starts and tests are written.
constexpr unsigned kLeftOut[] = {OAMEVN_REPORT,  OAMEVN_CREATED,  OAMEVN_DELETED,
                                 OAMEVN_RENAMED, OAMEVN_MODIFIED, OAMEVN_STOPBOARD_DONE};

struct SeverityName {
    char letter;
    const char* word;
};

SeverityName severityName(unsigned severity) noexcept {
    if (severity == OAM_INFORMATION) return {'I', "INFO"};
    if (severity == OAM_WARNING) return {'W', "WARNING"};
    return {'E', "ERROR"};
}

class TraceStream {
  public:
    explicit TraceStream(FILE* stream) noexcept : stream_(stream) {}
    ~TraceStream() {
        if (fflush(stream_) != 0) rewind(stream_);
    }

    template <class... Values>
    void Checked(const char* format, Values... values) noexcept {
        if (fprintf(stream_, format, values...) < 0) rewind(stream_);
    }
    void Text(const char* text) noexcept { (void)fputs(text, stream_); }

  private:
    FILE* stream_;
};

oam_result writeTrace(const oam_msg_tag* message) noexcept {
    return alertLog().Write([message](FILE* stream) {
        TraceStream(stream).Checked("%s", oamMessageText(message));
        return OAM_SUCCESS;
    });
}

oam_result writeRecord(const oam_msg_tag* message) noexcept {
    const TimeStamp now;
    char hex[16];
    const char* code = _oamGetText(message->code);
    if (code == nullptr) {
        snprintf(hex, sizeof hex, "0x%08lx", static_cast<unsigned long>(message->code));
        code = hex;
    }
    unsigned number = 0;
    const bool isBoard = _oamBoardGetNumber(oamMessageSource(message), &number) == OAM_SUCCESS;

    return alertLog().Write([&](FILE* stream) {
        TraceStream trace(stream);
        trace.Checked("  <%s - %s", now.text, code);
        trace.Checked(" %s ", severityName(message->severity).word);
        if (isBoard) trace.Checked(" Board %lu", static_cast<unsigned long>(number));
        trace.Text("\"");
        trace.Text(oamMessageSource(message));
        trace.Text("\">\n");
        trace.Text(oamMessageText(message));
        trace.Checked("%s", "\n");
        return OAM_SUCCESS;
    });
}

}  // namespace

void FormatOammonLog(const oam_msg_tag* message) noexcept {
    if (std::find(std::begin(kLeftOut), std::end(kLeftOut), message->code) != std::end(kLeftOut)) {
        return;
    }
    (void)(message->code == OAMEVN_TRACE ? writeTrace(message) : writeRecord(message));
}

oam_result writePlainLine(const oam_msg_tag* message) noexcept {
    return alertLog().Write([message](FILE* stream) {
        const bool written =
            fprintf(stream, "%s(%c): %s\n", oamMessageSource(message),
                    severityName(message->severity).letter, oamMessageText(message)) >= 0;
        const bool flushed = fflush(stream) == 0;
        return written && flushed ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
    });
}
