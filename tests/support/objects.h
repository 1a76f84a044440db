// Short forms for working with objects through the exported entry points.
#pragma once

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "oam/entry.h"

namespace oam::test {

// A client that is not the service's own: its busy opens are answered at once.
constexpr unsigned long kClient = 7;

enum Mode : unsigned {
    kRead = OAM_OPEN_READ,
    kWrite = OAM_OPEN_WRITE,
    kProviderRead = OAM_OPEN_PROVIDER,
    kProvider = OAM_OPEN_WRITE | OAM_OPEN_PROVIDER
};

// A result with the text that came with it; the text is empty on failure.
struct Answer {
    unsigned code = 0;
    std::string text;
    bool operator==(const Answer&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Answer& answer);
inline Answer Is(std::string text) { return {OAM_SUCCESS, std::move(text)}; }
inline Answer Fails(unsigned code) { return {code, {}}; }

// Opens; a failure fails the test and gives 0.
unsigned long Open(const std::string& object, unsigned mode = kRead,
                   unsigned long client = kClient);
unsigned long DbOpen(const std::string& object, unsigned mode = kRead);

Answer GetKeyword(unsigned long handle, const std::string& keyword);
Answer GetQualifier(unsigned long handle, const std::string& keyword, const std::string& qualifier);
Answer DbGetKeyword(unsigned long handle, const std::string& keyword);
Answer DbGetQualifier(unsigned long handle, const std::string& keyword,
                      const std::string& qualifier);

// One opening for one answer.
Answer KeywordOf(const std::string& object, const std::string& keyword);
Answer QualifierOf(const std::string& object, const std::string& keyword,
                   const std::string& qualifier);
Answer StoredKeywordOf(const std::string& object, const std::string& keyword);

// Opens read-write, sets the keyword, closes: the first failure.
oam_result Change(const std::string& object, const std::string& keyword, const std::string& value);
// The same as a provider and without a plug-in in between.
oam_result DbChange(const std::string& object, const std::string& keyword,
                    const std::string& value);

// All objects in their order; all entries of an open object in theirs.
std::vector<std::string> Objects();
std::vector<std::string> EntryNames(unsigned long handle);

// Creates a board object of the product; a failure fails the test. The board's name.
std::string CreateBoard(const std::string& product);

}  // namespace oam::test
