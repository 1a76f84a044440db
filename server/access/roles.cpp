#include "access/roles.h"

#include <unistd.h>

#include <algorithm>
#include <array>

#include "access/accounts.h"
#include "failure.h"

namespace oam::server {
namespace {

constexpr std::array kNames = {"none", "viewer", "operator", "configurator", "admin"};

std::optional<Role> roleOf(std::string_view name) {
    for (const Role role : {Role::kViewer, Role::kOperator, Role::kConfigurator, Role::kAdmin})
        if (name == RoleName(role)) return role;
    return std::nullopt;
}

std::vector<std::string_view> wordsOf(std::string_view line) {
    constexpr std::string_view kBlanks = " \t\r\v\f";
    std::vector<std::string_view> words;
    for (auto begin = line.find_first_not_of(kBlanks); begin != line.npos;
         begin = line.find_first_not_of(kBlanks)) {
        line.remove_prefix(begin);
        words.push_back(line.substr(0, line.find_first_of(kBlanks)));
        line.remove_prefix(words.back().size());
    }
    return words;
}

std::string text(std::string_view word) { return Quoted(std::string(word)); }

}  // namespace

const char* RoleName(Role role) { return kNames.at(static_cast<std::size_t>(role)); }

std::string Caller::Name() const {
    if (!user) return certificate.empty() ? "unknown" : "certificate " + certificate;
    return UserName(*user).value_or("uid " + std::to_string(*user));
}

Roles::Roles()
    : rules_{{Rule::Kind::kUser, {}, Role::kAdmin, uid_t{0}},
             {Rule::Kind::kUser, {}, Role::kAdmin, geteuid()},
             {Rule::Kind::kEveryone, {}, Role::kViewer, {}}} {}

Roles Roles::Parse(std::string_view content, const std::string& name) {
    Roles roles;
    roles.rules_.clear();
    for (std::size_t number = 1; !content.empty(); ++number) {
        const auto line = content.substr(0, content.find('\n'));
        content.remove_prefix(std::min(line.size() + 1, content.size()));
        try {
            if (const auto rule = ParseLine(line)) roles.rules_.push_back(*rule);
        } catch (const RolesError& error) {
            throw RolesError(name + ':' + std::to_string(number) + ": " + error.what());
        }
    }
    return roles;
}

std::optional<Roles::Rule> Roles::ParseLine(std::string_view line) {
    const auto words = wordsOf(line);
    if (words.empty() || words[0].starts_with('#')) return std::nullopt;
    // A name that the system's databases would read up to its zero byte is another one's.
    if (line.find('\0') != line.npos) throw RolesError("a zero byte");
    const auto kind = words[0] == "user"          ? std::optional(Rule::Kind::kUser)
                      : words[0] == "group"       ? std::optional(Rule::Kind::kGroup)
                      : words[0] == "certificate" ? std::optional(Rule::Kind::kCertificate)
                      : words[0] == "everyone"    ? std::optional(Rule::Kind::kEveryone)
                                                  : std::nullopt;
    if (!kind)
        throw RolesError(text(words[0]) + " is none of user, group, certificate and everyone");
    const bool isNamed = *kind != Rule::Kind::kEveryone;
    if (words.size() != (isNamed ? 3 : 2))
        throw RolesError(text(words[0]) + (isNamed ? " takes a name and a role" : " takes a role"));
    const auto role = roleOf(words.back());
    if (!role)
        throw RolesError(text(words.back()) +
                         " is none of viewer, operator, configurator and admin");
    return Rule{*kind, isNamed ? std::string(words[1]) : std::string(), *role, std::nullopt};
}

Role Roles::Of(const Caller& caller) const {
    Role best = Role::kNone;
    for (const Rule& rule : rules_)
        if (rule.role > best && rule.Matches(caller)) best = rule.role;
    return best;
}

bool Roles::Rule::Matches(const Caller& caller) const {
    switch (kind) {
        case Kind::kUser:
            return caller.user && caller.user == (user ? user : UserNumber(name));
        case Kind::kGroup: {
            if (!caller.user) return false;
            const auto group = GroupNumber(name);
            return group && std::find(caller.groups.begin(), caller.groups.end(), *group) !=
                                caller.groups.end();
        }
        case Kind::kCertificate:
            return name == caller.certificate;
        case Kind::kEveryone:
            break;
    }
    return caller.user.has_value();
}

}  // namespace oam::server
