// The fixture of the board tests: the plug-in "rec.bpi" that serves the product "Card", and boards
// that are configured by data files before the start.
//
// The k-th configured board lies in "Obj<k>.xmo" and has the number k unless its entries say more.
// Every configured board starts with "Name", "Product" and "Number"; entries given by the test
// replace those of the same name and come after them otherwise.
#pragma once

#include <string>

#include "support/service_test.h"

namespace oam::test {

constexpr const char* kPlugin = "rec.bpi";
constexpr const char* kProduct = "Card";

// An entry with this value is left out of a configured board.
constexpr const char* kLeftOut = "\x01left out";

class BoardTest : public ServiceTest {
  protected:
    void SetUp() override { AddPluginFor(kPlugin, {kProduct}); }

    void Configure(const std::string& board, const Entries& entries = {});
    // The Supervisor's settings at the start; those not named are "No".
    void Settings(const Entries& settings);
    // Starts, then forgets the calls and alerts of the start.
    void StartQuietly();
    void Script(const Recorder::Change& change) { recorder.Script(kPlugin, change); }
    // What the plug-in was asked, without the alerts that it received.
    std::vector<std::string> Asked() const;

  private:
    int configured_ = 0;
};

}  // namespace oam::test
