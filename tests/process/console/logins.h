// What the tests of logins set up: rules of PAM with a password that is known, and a name for
// whoever runs the test.
#pragma once

#include <string>

#include "support/installation.h"

namespace oam::test {

// The password of any user in these rules: "secret of <user>".
void WritePamRules(const Installation& home);

// Of the user that runs this process.
std::string OwnUser();

}  // namespace oam::test
