// Loading every module of a kind from "/lib": found, announced, loaded, bound, given its managed
// object and initialised, in directory order. Any failure ends the loading and undoes it.
#pragma once

#include "base/last_failure.h"
#include "loading/module.h"

namespace oam {

struct LoaderTexts {
    const char* extension;
    const char* title;        // on the debug sink
    const char* noDirectory;  // a format for the directory's path
    const char* noFiles;
    const char* source;  // of the alerts
    bool flag;           // for the platform's directory lookup
    // Whether a path too long for the scan is told like every other failure.
    bool tellsLongPaths;
};

class ModuleLoader {
  public:
    explicit ModuleLoader(const LoaderTexts& texts) noexcept : texts_(texts) {}
    ModuleLoader(const ModuleLoader&) = delete;
    ModuleLoader& operator=(const ModuleLoader&) = delete;

    // 0 also when there is no directory or no file.
    oam_result LoadAll() noexcept;

  protected:
    ~ModuleLoader() = default;

  private:
    // Adds the module to its table, loads its library and binds its entries.
    virtual oam_result Load(const char* fileName) noexcept = 0;
    virtual oam_result Init(const char* fileName) noexcept = 0;
    // Ends every module and empties the table.
    virtual oam_result ExitAll() noexcept = 0;

    oam_result LoadFile(const char* path, const char* fileName) noexcept;

    const LoaderTexts& texts_;
};

// The loader of one kind: its table, the rows of its entries, and where the common ones are.
template <class Entries, size_t kRows>
class TableLoader final : public ModuleLoader {
  public:
    TableLoader(const LoaderTexts& texts, ModuleTable<Entries>& table,
                const EntryRow (&rows)[kRows]) noexcept
        : ModuleLoader(texts), flag_(texts.flag), table_(table), rows_(rows) {}

    oam_result ExitAll() noexcept override {
        LastFailure result;
        Entries entries;
        for (int i = 0; table_.EntriesAt(i, &entries); ++i) result.Note(entries.Object().Exit());
        table_.RemoveAll();
        return result.Get();
    }

  private:
    oam_result Load(const char* fileName) noexcept override {
        if (auto failed = table_.Insert(fileName)) return failed;
        void* library;
        if (auto failed = OpenLibrary(flag_, fileName, &library)) return failed;
        Entries entries;
        const oam_result bound = BindEntries(library, rows_, kRows, &entries);
        entries.SetModule(KorMarkedModule(fileName));
        (void)table_.Bind(fileName, entries);  // also in part: what has an Exit is exited
        return bound;
    }

    oam_result Init(const char* fileName) noexcept override {
        Entries entries;
        return table_.EntriesOf(fileName, &entries) ? entries.Object().Init(fileName)
                                                    : OAMERR_NOT_FOUND;
    }

    const bool flag_;
    ModuleTable<Entries>& table_;
    const EntryRow (&rows_)[kRows];
};

}  // namespace oam
