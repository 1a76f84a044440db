#include "board_trace.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

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

// A line put together before the log is locked: formats and pieces take longer than the write.
class Line {
  public:
    Line& Add(std::string_view text) noexcept {
        if (text.size() > sizeof text_ - length_) {
            fits_ = false;
        } else {
            text.copy(text_ + length_, text.size());
            length_ += text.size();
        }
        return *this;
    }
    Line& Add(unsigned number) noexcept {
        char digits[12];
        const auto [end, failed] = std::to_chars(digits, digits + sizeof digits, number);
        return Add(std::string_view(digits, static_cast<size_t>(end - digits)));
    }

    // Otherwise it is to be written in pieces.
    bool Fits() const noexcept { return fits_; }
    bool WriteTo(FILE* stream) const noexcept {
        return fwrite_unlocked(text_, 1, length_, stream) == length_;
    }

  private:
    char text_[1024];
    size_t length_ = 0;
    bool fits_ = true;
};

class TraceStream {
  public:
    explicit TraceStream(FILE* stream) noexcept : stream_(stream) {}
    ~TraceStream() {
        if (fflush_unlocked(stream_) != 0) rewind(stream_);
    }

    void Checked(const Line& line) noexcept {
        if (!line.WriteTo(stream_)) rewind(stream_);
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

    const char* word = severityName(message->severity).word;
    Line line;
    line.Add("  <").Add(now.text).Add(" - ").Add(code).Add(" ").Add(word).Add(" ");
    if (isBoard) line.Add(" Board ").Add(number);
    line.Add("\"").Add(oamMessageSource(message)).Add("\">\n");
    line.Add(oamMessageText(message)).Add("\n");

    return alertLog().Write([&](FILE* stream) {
        TraceStream trace(stream);
        if (line.Fits()) {
            trace.Checked(line);
            return OAM_SUCCESS;
        }
        trace.Checked("  <%s - %s", now.text, code);
        trace.Checked(" %s ", word);
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
    const char letter = severityName(message->severity).letter;
    Line line;
    line.Add(oamMessageSource(message)).Add("(").Add({&letter, 1}).Add("): ");
    line.Add(oamMessageText(message)).Add("\n");
    return alertLog().Write([&](FILE* stream) {
        const bool written = line.Fits()
                                 ? line.WriteTo(stream)
                                 : fprintf(stream, "%s(%c): %s\n", oamMessageSource(message),
                                           letter, oamMessageText(message)) >= 0;
        const bool flushed = fflush_unlocked(stream) == 0;
        return written && flushed ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
    });
}
