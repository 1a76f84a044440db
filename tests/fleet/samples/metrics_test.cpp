// The rules for Prometheus and the dashboard ask for figures that the programs really serve: each
// name and each label in them is one of a daemon's or an agent's that run.
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>

#include "await.h"
#include "host.h"
#include "hub.h"
#include "support/http.h"

namespace oam::test {
namespace {

using Names = std::set<std::string>;

std::string sample(const std::string& name) {
    std::ostringstream text;
    text << std::ifstream(std::string(OAM_FLEET_SAMPLES) + "/" + name).rdbuf();
    EXPECT_NE(text.str(), "") << name;
    return text.str();
}

Names matches(const std::string& text, const std::string& pattern) {
    const std::regex each(pattern, std::regex::multiline);
    Names found;
    for (std::sregex_iterator at(text.begin(), text.end(), each), end; at != end; ++at)
        found.insert((*at)[1]);
    return found;
}

// In the order of the file.
std::vector<std::string> valuesOf(const std::string& text, const std::string& key) {
    const std::regex each("^\\s*(?:- )?" + key + ": (?:>-\\n\\s*)?(.+(?:\\n\\s*/.+)?)$",
                          std::regex::multiline);
    std::vector<std::string> values;
    for (std::sregex_iterator at(text.begin(), text.end(), each), end; at != end; ++at)
        values.push_back((*at)[1]);
    return values;
}

// Expressions of both files.
std::vector<std::string> expressions() {
    std::vector<std::string> all = valuesOf(sample("oam-rules.yml"), "expr");
    const auto dashboard = nlohmann::json::parse(sample("oam-dashboard.json"));
    for (const auto& panel : dashboard.at("panels"))
        for (const auto& target : panel.at("targets")) all.push_back(target.at("expr"));
    for (const auto& variable : dashboard.at("templating").at("list"))
        if (variable.at("type") == "query") all.push_back(variable.at("query"));
    return all;
}

// What a scraper adds by itself.
const Names kScrapers{"up", "job", "instance", "host", "le"};

class SampleMetrics : public ::testing::Test {
  protected:
    // Every figure of both programs. Some are there only once something has happened.
    std::string Served() {
        site.Allow("host h1.example.net h1");
        Hub hub(site);
        const HostModel model(site, 1);
        Host host(site, model, "h1");
        host.SetHub(hub.Urls());
        host.StartDaemon();
        host.StartAgent();
        EXPECT_TRUE(host.Raise("something has happened"));
        EXPECT_TRUE(Await([&] { return host.AgentMetrics() != ""; })) << host.AgentLog();
        return host.DaemonMetrics() + host.AgentMetrics();
    }
    Site site;
};

TEST_F(SampleMetrics, AreAllServedByThePrograms) {
    const std::string served = Served();
    const Names names = matches(served, "^([a-z_]+)[ {]");
    Names known = kScrapers;
    for (const std::string& name : names) known.insert(name);
    // A family without a sample yet is told all the same.
    for (const std::string& name : matches(served, "^# TYPE ([a-z_]+) ")) known.insert(name);
    for (const std::string& name : matches(served, "^# TYPE ([a-z_]+) histogram"))
        known.insert(name + "_bucket");
    for (const std::string& name : valuesOf(sample("oam-rules.yml"), "record")) known.insert(name);
    std::size_t checked = 0;
    for (const std::string& expression : expressions())
        for (const std::string& name :
             matches(expression, "\\b((?:\\w+:)?(?:oam|process)_\\w+(?::\\w+)?|up\\b)")) {
            EXPECT_TRUE(known.count(name)) << name << " in " << expression;
            ++checked;
        }
    EXPECT_GT(checked, 40u);
}

TEST_F(SampleMetrics, HaveTheLabelsThatAreAskedFor) {
    const std::string served = Served();
    Names labels = kScrapers;
    for (const std::string& label : matches(served, "[{,]([a-z_]+)=\"")) labels.insert(label);
    for (const char* label : {"plugin", "entry"}) labels.insert(label);
    for (const std::string& expression : expressions()) {
        for (const std::string& label : matches(expression, "[{,] ?([a-z_]+)(?:=~?|!=)\""))
            EXPECT_TRUE(labels.count(label)) << label << " in " << expression;
        for (const std::string& list : matches(expression, "(?:by|on) \\(([^)]*)\\)"))
            for (const std::string& label : matches(list, "(\\w+)"))
                EXPECT_TRUE(labels.count(label)) << label << " in " << expression;
    }
}

TEST(SampleRules, EachHaveAnExpressionAndSayWhatIsWrong) {
    const std::string rules = sample("oam-rules.yml");
    const std::size_t alerts = valuesOf(rules, "alert").size();
    EXPECT_GT(alerts, 10u);
    EXPECT_EQ(valuesOf(rules, "expr").size(), alerts + valuesOf(rules, "record").size());
    EXPECT_EQ(valuesOf(rules, "summary").size(), alerts);
    EXPECT_EQ(valuesOf(rules, "severity").size(), alerts);
    EXPECT_EQ(matches(rules, "^ *- alert: (.+)$").size(), alerts) << "a name is there twice";
    for (const std::string& expression : expressions())
        EXPECT_EQ(std::count(expression.begin(), expression.end(), '('),
                  std::count(expression.begin(), expression.end(), ')'))
            << expression;
}

TEST(SampleDashboard, HasPanelsThatDoNotLieUponEachOther) {
    const auto dashboard = nlohmann::json::parse(sample("oam-dashboard.json"));
    std::set<std::pair<int, int>> taken;
    std::set<int> ids;
    for (const auto& panel : dashboard.at("panels")) {
        EXPECT_NE(panel.at("title").get<std::string>(), "");
        EXPECT_TRUE(ids.insert(panel.at("id").get<int>()).second);
        const auto& place = panel.at("gridPos");
        for (int x = place.at("x"); x < place.at("x").get<int>() + place.at("w").get<int>(); ++x)
            for (int y = place.at("y"); y < place.at("y").get<int>() + place.at("h").get<int>();
                 ++y) {
                EXPECT_LT(x, 24);
                EXPECT_TRUE(taken.emplace(x, y).second) << panel.at("title");
            }
    }
    EXPECT_GT(ids.size(), 10u);
}

}  // namespace
}  // namespace oam::test
