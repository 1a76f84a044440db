// A site fills in exactly what a configuration asks for: the sample of site.conf has each of the
// names, no other, and so has what the tests put in its place.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "hub.h"
#include "leaf.h"

namespace oam::test {
namespace {

using Names = std::set<std::string>;

std::string contentOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    EXPECT_NE(text.str(), "") << path;
    return text.str();
}

Names namesIn(const std::string& text, const std::string& pattern) {
    const std::regex each(pattern, std::regex::multiline);
    Names names;
    for (std::sregex_iterator at(text.begin(), text.end(), each), end; at != end; ++at)
        names.insert((*at)[1]);
    return names;
}

Names askedFor(const std::string& sample) {
    return namesIn(contentOf(std::string(OAM_FLEET_SAMPLES) + "/" + sample), "\\$(OAM_\\w+)");
}

Names given(const std::string& path) { return namesIn(contentOf(path), "^(OAM_\\w+):"); }

TEST(SampleSites, GiveTheHubExactlyWhatItAsksFor) {
    Site site;
    const Hub hub(site);
    EXPECT_EQ(given(std::string(OAM_FLEET_SAMPLES) + "/hub-site.conf"), askedFor("hub.conf"));
    EXPECT_EQ(given(site.Path("hub-1/site.conf")), askedFor("hub.conf"));
}

TEST(SampleSites, GiveTheLeafExactlyWhatItAsksFor) {
    Site site;
    Leaf leaf(site, "h1", "h1.example.net", "tls://localhost:1");
    EXPECT_EQ(given(std::string(OAM_FLEET_SAMPLES) + "/leaf-site.conf"), askedFor("leaf.conf"));
    EXPECT_EQ(given(leaf.Server().Directory() + "/site.conf"), askedFor("leaf.conf"));
}

}  // namespace
}  // namespace oam::test
