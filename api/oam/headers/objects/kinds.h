// The four kinds of managed object: the Supervisor, and the proxies that pass everything on to the
// board, plug-in or component that owns the data.
#pragma once

#include "objects/object.h"

// Holds the service's settings and computes the lists of what is loaded and configured.
class CMOSuper : public KOR_CMObject {
  public:
    CMOSuper() noexcept;

    oam_result InitKeywords() noexcept override;
    oam_result ValidateChanges() noexcept override;
    void HandleChanges() noexcept override;
    void ValidateChangesCleanup() noexcept override {}
    oam_result TrapSetKeyword(unsigned long handle, const char* name,
                              const char* value) noexcept override;
    oam_result TrapGetKeyword(unsigned long handle, const char* name, char* buffer,
                              unsigned size) noexcept override;
    oam_result TrapSetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                                const char* value) noexcept override;
    oam_result TrapGetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                                char* buffer, unsigned size) noexcept override;
};

// Where a proxy's operations go: each function takes the object's name first.
struct ObjectGlue {
    oam_result (*open)(const char* name, unsigned long handle, unsigned mode) noexcept;
    oam_result (*close)(const char* name, unsigned long handle) noexcept;
    oam_result (*setKeyword)(const char* name, unsigned long handle, const char* keyword,
                             const char* value) noexcept;
    oam_result (*getKeyword)(const char* name, unsigned long handle, const char* keyword,
                             char* buffer, unsigned size) noexcept;
    oam_result (*setQualifier)(const char* name, unsigned long handle, const char* keyword,
                               const char* qualifier, const char* value) noexcept;
    oam_result (*getQualifier)(const char* name, unsigned long handle, const char* keyword,
                               const char* qualifier, char* buffer, unsigned size) noexcept;
};

// Passes every access on, arguments and results unchanged.
class ProxyObject : public KOR_CMObject {
  public:
    oam_result TrapOpen(unsigned long handle, unsigned mode) noexcept override;
    oam_result TrapClose(unsigned long handle) noexcept override;
    oam_result TrapSetKeyword(unsigned long handle, const char* name,
                              const char* value) noexcept override;
    oam_result TrapGetKeyword(unsigned long handle, const char* name, char* buffer,
                              unsigned size) noexcept override;
    oam_result TrapSetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                                const char* value) noexcept override;
    oam_result TrapGetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                                char* buffer, unsigned size) noexcept override;

  protected:
    ProxyObject(const char* name, const char* dataFileName, const ObjectGlue& glue) noexcept
        : KOR_CMObject(name, dataFileName), glue_(glue) {}

  private:
    const ObjectGlue& glue_;
};

class CMOBoard : public ProxyObject {
  public:
    CMOBoard(const char* name, const char* dataFileName) noexcept;

    bool IsBoard() const noexcept override { return true; }
    oam_result TrapCreate(const char* name, const char* product) noexcept override;
    oam_result TrapDelete() noexcept override;
};

// An object that stands for a file in "/lib". Its data file is named by the object's name with
// everything after the first "." replaced by "xmo".
class FileProxy : public ProxyObject {
  protected:
    // Kept: the first dot counts, not the last, so "a.b.emc" shares "a.xmo" with "a.emc".
    FileProxy(const char* name, const ObjectGlue& glue) noexcept;
};

class CMOPlugin : public FileProxy {
  public:
    explicit CMOPlugin(const char* name) noexcept;
};

class CMOEmc : public FileProxy {
  public:
    explicit CMOEmc(const char* name) noexcept;
};
