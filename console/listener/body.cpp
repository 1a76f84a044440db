#include "listener/body.h"

namespace oam::console {

// A body without a length has none; one that comes in parts has a reader of its own.
BodyProblem TakeBody(const httplib::Request& request, const httplib::ContentReader& reader,
                     std::size_t most, std::string* body) {
    if (!request.has_header("Content-Length")) return BodyProblem::kNone;
    bool isTooLong = false;
    const auto take = [&](const char* data, std::size_t size) {
        isTooLong = isTooLong || size > most - body->size();
        if (!isTooLong) body->append(data, size);
        return true;
    };
    const bool isRead = request.is_multipart_form_data()
                            ? reader([](const httplib::MultipartFormData&) { return true; }, take)
                            : reader(take);
    if (isTooLong) {
        body->clear();
        return BodyProblem::kTooLong;
    }
    return isRead ? BodyProblem::kNone : BodyProblem::kBroken;
}

void DropBody(const httplib::Request& request, const httplib::ContentReader& reader) {
    std::string none;
    (void)TakeBody(request, reader, 0, &none);
}

}  // namespace oam::console
