// The usual fixture: an installation, a recorder for its modules and an alert log; the service is
// started by the test and stopped behind it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "oam/entry.h"
#include "plugins/recorder/host.h"
#include "support/alert_log.h"
#include "support/data_file.h"
#include "support/installation.h"
#include "support/objects.h"

namespace oam::test {

class ServiceTest : public ::testing::Test {
  protected:
    void TearDown() override {
        alerts.AnswerWith(nullptr);
        EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    }

    void Start() { ASSERT_EQ(_oamInit(), OAM_SUCCESS) << home.Read("oam/log/startup.log"); }

    // Adds the complete plug-in or component under a file name and scripts it.
    void AddPlugin(const std::string& file, const Recorder::Change& script = {}) {
        home.AddModule("recorder.bpi", file);
        if (script) recorder.Script(file, script);
    }
    void AddComponent(const std::string& file, const Recorder::Change& script = {}) {
        home.AddModule("recorder.emc", file);
        if (script) recorder.Script(file, script);
    }
    // A plug-in that serves products, each one's boards with these keywords.
    void AddPluginFor(const std::string& file, std::vector<std::string> products,
                      Entries boardKeywords = {}) {
        AddPlugin(file, [&](ModuleScript& script) {
            script.products = std::move(products);
            script.boardKeywords = std::move(boardKeywords);
        });
    }

    Installation home;
    Recorder recorder;
    AlertLog alerts;
};

}  // namespace oam::test
