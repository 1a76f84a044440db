#include "logins.h"

#include <pwd.h>
#include <unistd.h>

#include <filesystem>

namespace oam::test {

void WritePamRules(const Installation& home) {
    home.MakeDirectory("pam.d");
    home.Write("pam.d/check",
               "#!/bin/sh\nIFS= read -r password\n[ \"$password\" = \"secret of $PAM_USER\" ]\n");
    std::filesystem::permissions(home.Path("pam.d/check"), std::filesystem::perms(0755));
    home.Write("pam.d/oam-console", "auth required pam_exec.so expose_authtok quiet " +
                                        home.Path("pam.d/check") +
                                        "\naccount required pam_permit.so\n");
}

std::string OwnUser() {
    const passwd* const record = getpwuid(geteuid());
    return record ? record->pw_name : "";
}

}  // namespace oam::test
