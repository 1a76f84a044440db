// Requests to the service in this process.
//
// The service accepts a request and tells its outcome later, in one alert with the operation's
// event code and the board's name as source. This listens from its making on, so it is made before
// the first request.
//
// One alert of that kind is no outcome: the refusal of another request for the same operation while
// this one runs ("Board is currently being started.") - the service's automatic start can raise it
// in the middle of ours. The outcome of the operation that runs follows.
#pragma once

#include "service.h"

namespace oam {

class LocalService;
struct OperationRow;

class LocalOperations : public Operations {
  public:
    LocalOperations(LocalService& service, OperationKind kind);

    std::optional<OperationOutcome> Request(const std::string& board, unsigned value) override;
    std::optional<OperationOutcome> Next(const AlertInbox::Deadline& deadline) override;
    std::map<std::string, std::string, NameLess> Expected() const override { return expected_; }
    void Settle(const std::vector<std::string>& boards) override;

  private:
    LocalService& service_;
    const OperationRow& row_;
    std::map<std::string, std::string, NameLess> expected_;
};

}  // namespace oam
