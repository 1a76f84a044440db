// A shared object as the loader sees it: its dynamic symbols, what it needs, and which symbols it
// reaches through the loader. Nothing in the file is trusted.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace oam::check {

struct ElfSymbol {
    std::string name;
    bool isDefined;
    bool isExported;   // defined, and visible to others
    bool isWeak;       // or unique: the loader is meant to merge the copies
    bool isProtected;  // always bound to itself
    bool isReached;    // by a relocation, that is through the loader
};

class ElfFile {
  public:
    // Nothing, and the reason, when it is not a shared object for this machine.
    static std::optional<ElfFile> Read(const std::string& path, std::string* reason);

    const std::vector<ElfSymbol>& Symbols() const { return symbols_; }
    bool Exports(const std::string& name) const;
    // The libraries that it names, and where it says they are, "$ORIGIN" put in.
    const std::vector<std::string>& Needed() const { return needed_; }
    const std::vector<std::string>& RunPaths() const { return runPaths_; }
    // Linked with -Bsymbolic.
    bool IsSymbolic() const { return isSymbolic_; }

  private:
    friend class ElfReader;

    std::vector<ElfSymbol> symbols_;
    std::vector<std::string> needed_;
    std::vector<std::string> runPaths_;
    bool isSymbolic_ = false;
};

}  // namespace oam::check
