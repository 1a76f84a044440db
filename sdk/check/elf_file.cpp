#include "elf_file.h"

#include <elf.h>
#include <link.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <sstream>
#include <string_view>

namespace oam::check {
namespace {

using Header = ElfW(Ehdr);
using Section = ElfW(Shdr);
using Symbol = ElfW(Sym);
using Dynamic = ElfW(Dyn);

// The macros of <elf.h> are the same for both classes but in their names.
#if __ELF_NATIVE_CLASS == 64
unsigned long symbolOf(unsigned long long info) { return ELF64_R_SYM(info); }
#else
unsigned long symbolOf(unsigned long info) { return ELF32_R_SYM(info); }
#endif

constexpr unsigned char kUnique = 10;  // STB_GNU_UNIQUE

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string_view stringAt(std::string_view strings, std::size_t offset) {
    if (offset >= strings.size()) return {};
    const auto rest = strings.substr(offset);
    const auto end = rest.find('\0');
    return end == std::string_view::npos ? std::string_view() : rest.substr(0, end);
}

// What the linker puts there by itself.
bool isLinkersOwn(std::string_view name) {
    constexpr std::string_view kNames[] = {"_init",  "_fini", "__bss_start", "_edata", "edata",
                                           "_etext", "etext", "_end",        "end"};
    return std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
}

}  // namespace

class ElfReader {
  public:
    explicit ElfReader(const std::string& path) : path_(path), bytes_(readFile(path)) {}

    std::optional<ElfFile> Read(std::string* reason) {
        if (!ReadHeader(reason)) return std::nullopt;
        const Section* symbols = Find(SHT_DYNSYM);
        const Section* dynamic = Find(SHT_DYNAMIC);
        if (symbols == nullptr || dynamic == nullptr) {
            *reason = "it has no dynamic symbols";
            return std::nullopt;
        }
        ReadSymbols(*symbols);
        ReadRelocations();
        ReadDynamic(*dynamic);
        return std::move(file_);
    }

  private:
    bool ReadHeader(std::string* reason) {
        const auto header = Table<Header>(0, sizeof(Header));
        const auto own = readFile("/proc/self/exe").substr(0, sizeof(Header));
        if (header.empty() || std::memcmp(header[0].e_ident, ELFMAG, SELFMAG) != 0) {
            *reason = "it is no ELF file";
            return false;
        }
        Header host{};
        std::memcpy(&host, own.data(), own.size());
        if (header[0].e_ident[EI_CLASS] != host.e_ident[EI_CLASS] ||
            header[0].e_ident[EI_DATA] != host.e_ident[EI_DATA] ||
            header[0].e_machine != host.e_machine) {
            *reason = "it is for another machine";
            return false;
        }
        if (header[0].e_type != ET_DYN) {
            *reason = "it is an ELF file, but no shared object";
            return false;
        }
        sections_ = Table<Section>(header[0].e_shoff, header[0].e_shnum * sizeof(Section));
        return true;
    }

    template <class Item>
    std::span<const Item> Table(std::uint64_t offset, std::uint64_t size) const {
        if (offset > bytes_.size() || size > bytes_.size() - offset) return {};
        if (offset % alignof(Item) != 0) return {};
        return {reinterpret_cast<const Item*>(bytes_.data() + offset), size / sizeof(Item)};
    }

    template <class Item>
    std::span<const Item> ItemsOf(const Section& section) const {
        return Table<Item>(section.sh_offset, section.sh_size);
    }

    std::string_view StringsOf(const Section& section) const {
        if (section.sh_link >= sections_.size()) return {};
        const auto bytes = ItemsOf<char>(sections_[section.sh_link]);
        return {bytes.data(), bytes.size()};
    }

    const Section* Find(unsigned int type) const {
        const auto found = std::find_if(sections_.begin(), sections_.end(),
                                        [&](const auto& row) { return row.sh_type == type; });
        return found != sections_.end() ? &*found : nullptr;
    }

    void ReadSymbols(const Section& section) {
        const auto strings = StringsOf(section);
        for (const Symbol& symbol : ItemsOf<Symbol>(section)) {
            const auto binding = ELF64_ST_BIND(symbol.st_info);
            const auto visibility = ELF64_ST_VISIBILITY(symbol.st_other);
            const bool isDefined = symbol.st_shndx != SHN_UNDEF;
            const auto name = stringAt(strings, symbol.st_name);
            file_.symbols_.push_back(
                {.name = std::string(name),
                 .isDefined = isDefined,
                 // Absolute ones are the names of versions.
                 .isExported = isDefined && symbol.st_shndx != SHN_ABS && binding != STB_LOCAL &&
                               (visibility == STV_DEFAULT || visibility == STV_PROTECTED) &&
                               !isLinkersOwn(name),
                 .isWeak = binding == STB_WEAK || binding == kUnique,
                 .isProtected = visibility == STV_PROTECTED,
                 .isReached = false});
        }
    }

    void ReadRelocations() {
        for (const Section& section : sections_) {
            if (section.sh_type == SHT_RELA) MarkReached(ItemsOf<ElfW(Rela)>(section));
            if (section.sh_type == SHT_REL) MarkReached(ItemsOf<ElfW(Rel)>(section));
        }
    }

    template <class Relocation>
    void MarkReached(std::span<const Relocation> relocations) {
        for (const auto& relocation : relocations) {
            const auto symbol = symbolOf(relocation.r_info);
            if (symbol < file_.symbols_.size()) file_.symbols_[symbol].isReached = true;
        }
    }

    void ReadDynamic(const Section& section) {
        const auto strings = StringsOf(section);
        for (const Dynamic& row : ItemsOf<Dynamic>(section)) {
            const auto value = row.d_un.d_val;
            if (row.d_tag == DT_NULL) break;
            if (row.d_tag == DT_SYMBOLIC) file_.isSymbolic_ = true;
            if (row.d_tag == DT_FLAGS && (value & DF_SYMBOLIC) != 0) file_.isSymbolic_ = true;
            if (row.d_tag == DT_NEEDED) file_.needed_.emplace_back(stringAt(strings, value));
            if (row.d_tag == DT_RUNPATH || row.d_tag == DT_RPATH)
                AddRunPaths(std::string(stringAt(strings, value)));
        }
    }

    void AddRunPaths(const std::string& paths) {
        const auto origin = std::filesystem::absolute(path_).parent_path().string();
        std::istringstream parts(paths);
        for (std::string part; std::getline(parts, part, ':');) {
            for (const std::string_view name : {"$ORIGIN", "${ORIGIN}"}) {
                const auto found = part.find(name);
                if (found != std::string::npos) part.replace(found, name.size(), origin);
            }
            file_.runPaths_.push_back(part);
        }
    }

    std::string path_;
    std::string bytes_;
    std::span<const Section> sections_;
    ElfFile file_;
};

std::optional<ElfFile> ElfFile::Read(const std::string& path, std::string* reason) {
    return ElfReader(path).Read(reason);
}

bool ElfFile::Exports(const std::string& name) const {
    return std::any_of(symbols_.begin(), symbols_.end(), [&](const ElfSymbol& symbol) {
        return symbol.isExported && symbol.name == name;
    });
}

}  // namespace oam::check
