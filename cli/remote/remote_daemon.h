// The daemon at the other end of the stubs.
#pragma once

#include "daemon.h"
#include "remote/stubs.h"

namespace oam {

class RemoteDaemon : public Daemon {
  public:
    explicit RemoteDaemon(Stubs& stubs) : stubs_(stubs) {}

    HostFacts Host() override;
    HostFacts Control(Life life) override;
    std::vector<DoctorFinding> Diagnose() override;
    std::vector<HistoryLine> History(const std::string& object, unsigned limit) override;
    std::vector<ObjectDifferences> Diff(std::uint64_t from, std::uint64_t to,
                                        const std::string& object) override;
    std::vector<ObjectDifferences> RollBack(std::uint64_t generation,
                                            const std::string& object) override;

  private:
    Stubs& stubs_;
};

}  // namespace oam
