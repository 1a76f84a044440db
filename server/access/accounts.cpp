#include "access/accounts.h"

#include <grp.h>
#include <pwd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "access/roles.h"

namespace oam::server {
namespace {

constexpr std::size_t kLargest = std::size_t{1} << 24;  // a group of very many members

// `ask(record, buffer, size, found)` as getpwnam_r answers; `take` gets the record that was found.
template <class Record, class Ask, class Take>
auto look(Ask ask, Take take) -> std::optional<decltype(take(Record{}))> {
    for (std::size_t size = 1024; size <= kLargest; size *= 4) {
        std::vector<char> buffer(size);
        Record record{};
        Record* found = nullptr;
        int error;
        do {
            error = ask(&record, buffer.data(), size, &found);
        } while (error == EINTR);
        if (error == 0 && found != nullptr) return take(record);
        if (error != ERANGE) break;
    }
    return std::nullopt;
}

template <class Take>
auto lookUpUser(uid_t user, Take take) {
    return look<passwd>(
        [user](passwd* record, char* buffer, std::size_t size, passwd** found) {
            return getpwuid_r(user, record, buffer, size, found);
        },
        take);
}

}  // namespace

std::optional<std::string> UserName(uid_t user) {
    return lookUpUser(user, [](const passwd& record) { return std::string(record.pw_name); });
}

std::optional<uid_t> UserNumber(const std::string& name) {
    return look<passwd>(
        [&](passwd* record, char* buffer, std::size_t size, passwd** found) {
            return getpwnam_r(name.c_str(), record, buffer, size, found);
        },
        [](const passwd& record) { return record.pw_uid; });
}

std::optional<gid_t> PrimaryGroup(uid_t user) {
    return lookUpUser(user, [](const passwd& record) { return record.pw_gid; });
}

std::optional<gid_t> GroupNumber(const std::string& name) {
    return look<group>(
        [&](group* record, char* buffer, std::size_t size, group** found) {
            return getgrnam_r(name.c_str(), record, buffer, size, found);
        },
        [](const group& record) { return record.gr_gid; });
}

std::vector<gid_t> GroupsOf(uid_t user, gid_t primary) {
    constexpr int kMost = 1 << 20;
    const auto name = UserName(user);
    if (!name) return {primary};
    std::vector<gid_t> groups(32);
    for (;;) {
        int count = static_cast<int>(groups.size());
        const bool fits = getgrouplist(name->c_str(), primary, groups.data(), &count) >= 0;
        if (!fits && count <= kMost && count > static_cast<int>(groups.size())) {
            groups.resize(static_cast<std::size_t>(count));
            continue;
        }
        groups.resize(fits ? static_cast<std::size_t>(count) : 0);
        break;
    }
    groups.push_back(primary);
    std::sort(groups.begin(), groups.end());
    groups.erase(std::unique(groups.begin(), groups.end()), groups.end());
    return groups;
}

}  // namespace oam::server
