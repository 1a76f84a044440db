#include "board_trace.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
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
    std::string_view Text() const noexcept { return {text_, length_}; }

  private:
    char text_[1024];
    size_t length_ = 0;
    bool fits_ = true;
};

// One record's way into the log.
class TraceStream {
  public:
    explicit TraceStream(LogStream& log) noexcept : log_(log) {}
    ~TraceStream() {
        if (isCut_) log_.Rewind();
    }
    TraceStream(const TraceStream&) = delete;
    TraceStream& operator=(const TraceStream&) = delete;

    // Rewinds a log that cannot be written: at once, or behind the record.
    void Checked(std::string_view text) noexcept {
        if (!log_.Put(text)) log_.Rewind();
    }
    void Text(std::string_view text) noexcept { isCut_ = !log_.Put(text) || isCut_; }

  private:
    LogStream& log_;
    bool isCut_ = false;
};

oam_result writeTrace(const oam_msg_tag* message) noexcept {
    return alertLog().Write([message](LogStream& log) {
        TraceStream(log).Checked(oamMessageText(message));
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
    const auto addFirst = [&](Line* line) { line->Add("  <").Add(now.text).Add(" - "); };
    const auto addSecond = [&](Line* line) {
        line->Add(" ").Add(word).Add(" ");
        if (isBoard) line->Add(" Board ").Add(number);
    };
    Line line;
    addFirst(&line);
    line.Add(code);  // a plug-in's has any length
    addSecond(&line);
    line.Add("\"").Add(oamMessageSource(message)).Add("\">\n");
    line.Add(oamMessageText(message)).Add("\n");

    return alertLog().Write([&](LogStream& log) {
        TraceStream trace(log);
        if (line.Fits()) {
            trace.Checked(line.Text());
            return OAM_SUCCESS;
        }
        Line first;
        addFirst(&first);
        Line second;
        addSecond(&second);
        trace.Checked(first.Text());
        trace.Checked(code);
        trace.Checked(second.Text());
        trace.Text("\"");
        trace.Text(oamMessageSource(message));
        trace.Text("\">\n");
        trace.Text(oamMessageText(message));
        trace.Checked("\n");
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
    return alertLog().Write([&](LogStream& log) {
        bool written = true;
        if (line.Fits()) {
            written = log.Put(line.Text());
        } else {
            const char middle[] = {'(', letter, ')', ':', ' '};
            for (const std::string_view piece :
                 {std::string_view(oamMessageSource(message)),
                  std::string_view(middle, sizeof middle),
                  std::string_view(oamMessageText(message)), std::string_view("\n")}) {
                written = log.Put(piece) && written;
            }
        }
        return written ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
    });
}
