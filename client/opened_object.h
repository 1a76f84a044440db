// One opening of one object, closed at the end of its scope.
#pragma once

#include <string>
#include <vector>

#include "text_answer.h"

namespace oam {

class OpenedObject {
  public:
    // `mode` as OAM_OPEN_...; a refusal is a Failure. The tool is an ordinary client: an object
    // that somebody else changes just now is refused at once.
    OpenedObject(const std::string& name, unsigned mode);
    // Closes without a look at the result, so a changed object is closed with Close.
    ~OpenedObject();
    OpenedObject(const OpenedObject&) = delete;
    OpenedObject& operator=(const OpenedObject&) = delete;

    const std::string& Name() const { return name_; }
    unsigned long Handle() const { return handle_; }

    Answer Keyword(const std::string& keyword) const;
    Answer Qualifier(const std::string& keyword, const std::string& qualifier) const;
    // "<list>.Count" as a number; what is not a number, or beyond any real list, is none.
    unsigned Count(const std::string& list) const;
    // Stored entries, qualifiers ("keyword?qualifier") included, in order.
    std::vector<std::string> Entries() const;

    // The service's answer to the commit.
    unsigned Close();
    // The same without OAMEVN_MODIFIED.
    unsigned CloseWithoutAlert();

  private:
    std::string name_;
    unsigned long handle_ = 0;
    bool open_ = false;
};

// "<list>[<index>]"
std::string Element(const std::string& list, unsigned index);

// A count read from outside: 0 unless it is a number up to kMostElements.
constexpr unsigned kMostElements = 10000;
unsigned BoundedCount(const Answer& answer);

}  // namespace oam
