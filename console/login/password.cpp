#include "login/password.h"

#include <security/pam_appl.h>

#include <cstdlib>
#include <cstring>

namespace oam::console {
namespace {

constexpr int kAtOnce = 4;
constexpr std::size_t kLongest = 512;

// Answers what is asked unseen with the password, and nothing else.
int converse(int count, const pam_message** questions, pam_response** answers, void* password) {
    if (count <= 0 || count > PAM_MAX_NUM_MSG) return PAM_CONV_ERR;
    auto* const given = static_cast<pam_response*>(
        std::calloc(static_cast<std::size_t>(count), sizeof(pam_response)));
    if (given == nullptr) return PAM_BUF_ERR;
    for (int i = 0; i < count; ++i)
        if (questions[i]->msg_style == PAM_PROMPT_ECHO_OFF)
            given[i].resp = strdup(static_cast<const char*>(password));
    *answers = given;
    return PAM_SUCCESS;
}

bool isRight(const std::string& service, const std::string& directory, const std::string& user,
             std::string password) {
    const pam_conv conversation = {converse, password.data()};
    pam_handle_t* pam = nullptr;
    if (pam_start_confdir(service.c_str(), user.c_str(), &conversation,
                          directory.empty() ? nullptr : directory.c_str(), &pam) != PAM_SUCCESS)
        return false;
    constexpr int kFlags = PAM_SILENT | PAM_DISALLOW_NULL_AUTHTOK;
    int result = pam_authenticate(pam, kFlags);
    if (result == PAM_SUCCESS) result = pam_acct_mgmt(pam, kFlags);
    // A module may have made another user of it.
    const void* known = nullptr;
    if (result == PAM_SUCCESS) result = pam_get_item(pam, PAM_USER, &known);
    const bool isSame = known != nullptr && user == static_cast<const char*>(known);
    pam_end(pam, result);
    return result == PAM_SUCCESS && isSame;
}

}  // namespace

Passwords::Verdict Passwords::Check(const std::string& user, const std::string& password) {
    const bool isPlain = user.find('\0') == user.npos && password.find('\0') == password.npos;
    if (user.empty() || !isPlain || user.size() > kLongest || password.size() > kLongest)
        return Verdict::kWrong;
    struct Turn {
        std::atomic<int>& running;
        const int before = running++;
        ~Turn() { --running; }
    } const turn{running_};
    if (turn.before >= kAtOnce) return Verdict::kBusy;
    return isRight(service_, directory_, user, password) ? Verdict::kRight : Verdict::kWrong;
}

}  // namespace oam::console
