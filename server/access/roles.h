// Who may do what.
//
// A role holds the ones before it: viewer, operator (start, stop, test), configurator (change,
// create, delete), admin (import, raw buffers, restart). A file maps who is there to roles, one
// rule a line:
//
//   # user, group and certificate names; a role each
//   user root admin
//   group oam-operators operator
//   certificate noc.example.net viewer
//   everyone viewer
//
// `everyone` is every local user. The highest role of all that match counts. Without a file: root
// and the user that the daemon runs as are admin, and every other local user is a viewer. A line
// that is none of these is a RolesError with its number, and the rules in force stay in force.
#pragma once

#include <sys/types.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace oam::server {

enum class Role { kNone, kViewer, kOperator, kConfigurator, kAdmin };

// "viewer", ...; "none".
const char* RoleName(Role role);

// Who calls: a local process (its credentials are the kernel's word) or a certificate.
struct Caller {
    std::optional<uid_t> user;  // a local one
    std::vector<gid_t> groups;  // all of the user's
    std::string certificate;    // the name in it, of a remote one
    pid_t process = 0;

    // For logs and history: "root", "uid 1234", "certificate noc.example.net".
    std::string Name() const;
};

// The groups of a user, as the system's databases tell them, and `primary`.
std::vector<gid_t> GroupsOf(uid_t user, gid_t primary);

class RolesError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class Roles {
  public:
    // The rules without a file.
    Roles();
    // `text` of the file, `name` for messages ("roles.conf:3: ...").
    static Roles Parse(std::string_view text, const std::string& name);

    Role Of(const Caller& caller) const;

  private:
    struct Rule {
        enum class Kind { kUser, kGroup, kCertificate, kEveryone };
        Kind kind;
        std::string name;
        Role role;
        std::optional<uid_t> user;  // of kUser: by number, for one that may have no name

        bool Matches(const Caller& caller) const;
    };
    // Nothing for a blank line or a comment. A RolesError without the place.
    static std::optional<Rule> ParseLine(std::string_view line);

    std::vector<Rule> rules_;
};

}  // namespace oam::server
