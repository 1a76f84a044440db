// A local user's password, asked of PAM.
//
// PAM answers a wrong one slowly on purpose, so few are asked at a time; the rest is told to come
// back.
#pragma once

#include <atomic>
#include <string>

namespace oam::console {

class Passwords {
  public:
    // `service` names the rules in /etc/pam.d, or in `directory` when there is one.
    Passwords(std::string service, std::string directory)
        : service_(std::move(service)), directory_(std::move(directory)) {}

    enum class Verdict { kRight, kWrong, kBusy };
    Verdict Check(const std::string& user, const std::string& password);

  private:
    const std::string service_;
    const std::string directory_;
    std::atomic<int> running_{0};
};

}  // namespace oam::console
