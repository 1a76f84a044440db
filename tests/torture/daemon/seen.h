// What clients of the daemon were told, over all of its lives, and whether a later life agrees.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "oam/v1/alerts.pb.h"
#include "oam/v1/operations.pb.h"

namespace oam::torture {

// Any thread. What does not agree is a fault, kept as a sentence.
class Seen {
  public:
    // A value that was asked for; and that it was acknowledged.
    void Attempt(const std::string& board, const std::string& value);
    void Acknowledge(const std::string& board, const std::string& value);
    // After a restart: the last one acknowledged, or one that was under way then.
    void Found(const std::string& board, const std::string& value);

    // An identity that was given.
    void Given(const std::string& operation);
    // What was told of it; `isLaterLife`: of a daemon that did not run it.
    void Told(const v1::Operation& operation, bool isLaterLife);
    std::vector<std::string> Operations() const;

    // One number is one alert, for ever.
    void Alert(const v1::Alert& alert);
    std::uint64_t Newest() const;

    void Fault(const std::string& fault);
    std::vector<std::string> Faults() const;

    std::size_t Changes() const;
    std::size_t Alerts() const;

  private:
    struct Board {
        std::string acknowledged;
        std::set<std::string> underWay;
    };

    mutable std::mutex mutex_;
    std::map<std::string, Board> boards_;
    std::map<std::string, v1::Operation::State> operations_;
    std::map<std::uint64_t, std::string> alerts_;
    std::size_t changes_ = 0;
    std::vector<std::string> faults_;
};

}  // namespace oam::torture
