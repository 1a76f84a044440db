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

class CMOBoard : public KOR_CMObject {
  public:
    using KOR_CMObject::KOR_CMObject;

    bool IsBoard() const noexcept override { return true; }
    oam_result TrapCreate(const char* name, const char* product) noexcept override;
    oam_result TrapDelete() noexcept override;
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
};

// An object that stands for a file in "/lib". Its data file is named by the object's name with
// everything after the first "." replaced by "xmo".
class FileProxy : public KOR_CMObject {
  public:
    // Kept: the first dot counts, not the last, so "a.b.emc" shares "a.xmo" with "a.emc".
    explicit FileProxy(const char* name) noexcept;
};

class CMOPlugin : public FileProxy {
  public:
    using FileProxy::FileProxy;

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
};

class CMOEmc : public FileProxy {
  public:
    using FileProxy::FileProxy;

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
};
