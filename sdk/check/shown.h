// Foreign texts and codes, fit to be shown on one line.
#pragma once

#include <string>
#include <string_view>

namespace oam::check {

// In double quotes, control characters escaped, cut after some sixty bytes.
std::string Quoted(std::string_view text);
// The same for a text that may be null: then null.
std::string QuotedOrNull(const char* text);

// "OAMERR_NOT_FOUND", or the number when it is none of the service's codes.
std::string CodeText(unsigned int code);
bool IsServiceCode(unsigned int code);

std::string HexText(unsigned long long number);

}  // namespace oam::check
