// Data files as the service commits them: a new file takes the old one's name.
#pragma once

#include <string>

#include "support/data_file.h"
#include "support/installation.h"

namespace oam::server::test {

using oam::test::DataFile;
using oam::test::Entries;
using oam::test::StandardEntries;

class DataFiles {
  public:
    explicit DataFiles(const oam::test::Installation& home) : home_(home) {}

    std::string Directory() const { return home_.Path("oam/cfg"); }
    std::string Path(const std::string& file) const { return Directory() + '/' + file; }

    void Commit(const std::string& file, const std::string& bytes) const;
    void CommitBoard(const std::string& file, const std::string& name,
                     const Entries& more = {}) const;
    void Delete(const std::string& file) const;

    // Until time stamps that are new now would be others.
    void AwaitSettled() const;

  private:
    const oam::test::Installation& home_;
};

// A board's data file, with "Product" and these entries.
std::string BoardFile(const std::string& name, const Entries& more = {});

}  // namespace oam::server::test
