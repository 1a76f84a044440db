#include "listener/replies.h"

#include "mirror/mirror.h"

namespace oam::console {

void Reply(httplib::Response& response, int status, const Json& json) {
    response.status = status;
    response.set_header("Cache-Control", "no-store");
    // Bytes that are not UTF-8 travel as base64; a text of our own may quote one all the same.
    response.set_content(json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n',
                         "application/json");
}

void Refuse(httplib::Response& response, int status, const std::string& reason,
            const std::string& rule, const std::string& remedy) {
    Reply(response, status, RefusalJson(reason, rule, remedy));
}

void Refuse(httplib::Response& response, const grpc::Status& status) {
    Reply(response, HttpStatusOf(status.error_code()), RefusalJson(status));
}

}  // namespace oam::console
