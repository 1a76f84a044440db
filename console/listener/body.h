// Taking a request's body.
//
// What is refused is read to its end and dropped: a connection is used again, and what is left of
// one request would be taken for the next one.
#pragma once

#include <httplib.h>

#include <string>

namespace oam::console {

enum class BodyProblem { kNone, kTooLong, kBroken };

BodyProblem TakeBody(const httplib::Request& request, const httplib::ContentReader& reader,
                     std::size_t most, std::string* body);

void DropBody(const httplib::Request& request, const httplib::ContentReader& reader);

}  // namespace oam::console
