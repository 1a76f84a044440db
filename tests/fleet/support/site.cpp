#include "site.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>
#include <stdexcept>

#include "child_process.h"

namespace oam::test {

// The paths of a daemon's installation are limited, so this one is short.
Site::Site() {
    char name[] = "/tmp/oamXXXXXX";
    if (mkdtemp(name) == nullptr) throw std::runtime_error("no directory for the test");
    root_ = name;
    Write("authorities.pem", authority_.Certificate());
}

Site::~Site() {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
}

std::string Site::Directory(const std::string& relative) const {
    std::filesystem::create_directories(root_ / relative);
    return Path(relative);
}

void Site::Write(const std::string& relative, const std::string& bytes) const {
    std::ofstream file(root_ / relative, std::ios::binary | std::ios::trunc);
    file << bytes;
    if (!file.flush()) throw std::runtime_error("cannot write " + Path(relative));
}

Papers Site::PapersOf(const std::string& name) {
    const auto known = papers_.find(name);
    if (known != papers_.end()) return known->second;
    return papers_[name] = Put(authority_, name, "");
}

Papers Site::ForeignPapersOf(const std::string& name) { return Put(foreign_, name, "foreign-"); }

std::string Site::Rights() const {
    Write("rights.list", rights_);
    const Finished made = ChildProcess({OAM_FLEET_RIGHTS, Path("rights.list")}, "/").Finish();
    EXPECT_EQ(made.status, 0) << made.err;
    return made.out;
}

Papers Site::Put(const Authority& authority, const std::string& name, const std::string& prefix) {
    const Identity identity =
        authority.IssueAs(name, "DNS:" + name + ",DNS:localhost,IP:127.0.0.1");
    Write(prefix + name + ".pem", identity.certificate);
    Write(prefix + name + ".key", identity.key);
    return {name, Path(prefix + name + ".pem"), Path(prefix + name + ".key"),
            Path("authorities.pem")};
}

}  // namespace oam::test
