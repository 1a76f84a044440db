// KOR_CMObject: its data file, "/oam/cfg/" and the data file name under the installation directory.

#include <errno.h>
#include <sys/stat.h>

#include <cstdio>
#include <utility>

#include "base/last_failure.h"
#include "base/path.h"
#include "data_file_image.h"
#include "durable_file.h"
#include "kept_keywords.h"
#include "object_saving.h"
#include "xmo_reader.h"
#include "xmo_writer.h"

using oam::kPathSize;

oam_result KOR_CMObject::BuildPath(DataFilePath* path) const noexcept {
    if (auto failed = GetFullPath(false, "/oam/cfg/", path->text, kPathSize)) return failed;
    const size_t length = strlen(path->text);
    if (auto failed = oam::CopyText(dataFileName_.Get(), path->text + length,
                                    static_cast<unsigned>(kPathSize - length))) {
        return failed;
    }
    // What is written in place anyway gains nothing from another name.
    if (beingCreated_ && !isWrittenInPlace(path->text)) strcat(path->text, kCreationSuffix);
    return OAM_SUCCESS;
}

oam_result KOR_CMObject::EndCreation() noexcept {
    if (!beingCreated_) return OAM_SUCCESS;
    DataFilePath made;
    if (auto failed = BuildPath(&made)) return failed;
    beingCreated_ = false;
    DataFilePath final;
    if (auto failed = BuildPath(&final)) return failed;
    // What was saved until now was not worth a sync. The name too: several files had it.
    if (!isWrittenInPlace(final.text) && !syncFileAndName(made.text))
        return OAMERR_FILE_WRITE_ERROR;
    return renameDurably(made.text, final.text) ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
}

oam_result KOR_CMObject::Load() noexcept {
    DataFilePath path;
    if (auto failed = BuildPath(&path)) return failed;
    if (kept_.object != nullptr) {
        if (keptKeywords().AreTrusted() || IsUnchanged(path.text)) {
            keptKeywords().Remove(this);
            return OAM_SUCCESS;
        }
        DropKept();
    }
    DataFileImage image;
    if (keywords_.Count() == 0 && image.Open(path.text) && image.Read() &&
        strcmp(image.ObjectName(), Name()) == 0 && keywords_.Adopt(image.Keywords())) {
        loadedFrom_ = image.Identity();
        return OAM_SUCCESS;
    }
    // The reading itself creates every entry.
    const int openCount = std::exchange(openCount_, 1);
    const unsigned openMode =
        std::exchange(openMode_, unsigned{OAM_OPEN_WRITE} | unsigned{OAM_OPEN_PROVIDER});
    const oam_result result = ReadFile(path.text);
    openCount_ = openCount;
    openMode_ = openMode;
    return result;
}

bool KOR_CMObject::IsUnchanged(const char* path) const noexcept {
    struct stat status;
    return stat(path, &status) == 0 && loadedFrom_.IsOf(status);
}

void KOR_CMObject::KeepFrom(DataFileImage* image) noexcept {
    if (openCount_ != 0 || keywords_.Count() != 0 || !image->Identity().IsKnown() ||
        !keywords_.Adopt(image->Keywords())) {
        return;
    }
    loadedFrom_ = image->Identity();
    keptKeywords().Add(this, keywords_.Bytes());
}

void KOR_CMObject::DropKept() noexcept {
    keptKeywords().Remove(this);
    loadedFrom_ = oam::FileIdentity();
    keywords_.RemoveAll();
}

oam_result KOR_CMObject::ReadFile(const char* path) noexcept {
    CXmlImport reader;
    if (reader.Open(path, kObjectRoot) != 0) {
        // A missing file is an object without keywords. One that is there, but out of reach for
        // want of memory or descriptors, must not be taken for it: the next save would empty it.
        return oam::IsOutOfMeans(errno) ? OAMERR_FILE_READ_ERROR : OAMERR_NOT_FOUND;
    }
    oam_result result = OAM_SUCCESS;
    CXmlImport::eTokenType kind = reader.GetNextKeyword();
    while (kind == CXmlImport::kText && result == OAM_SUCCESS) {
        result = strcmp(reader.ObjectName(), Name()) == 0
                     ? LoadKeyword(reader.Keyword(), reader.Value())
                     : OAMERR_FILE_READ_ERROR;
        if (result == OAM_SUCCESS) kind = reader.GetNextKeyword();
    }
    if (kind != CXmlImport::kEndOfFile) result = OAMERR_FILE_READ_ERROR;
    if (reader.Close() != 0) result = OAMERR_FILE_READ_ERROR;
    return result;
}

// A value that could not be copied is no failure of a change, but here the next save would lose it.
oam_result KOR_CMObject::LoadKeyword(const char* name, const char* value) noexcept {
    if (auto failed = DbSetKeyword(name, value)) return failed;
    return HasValue(name) ? OAM_SUCCESS : OAMERR_NOT_ENOUGH_MEMORY;
}

oam_result KOR_CMObject::Save() noexcept {
    ObjectSaving saving(this);
    saving.WriteAhead();
    if (auto failed = saving.PutInPlace()) return failed;
    return saving.Sync();
}

oam_result KOR_CMObject::WriteFile(DurableFile* file, bool sync) noexcept {
    CXmlExport writer;
    if (writer.Open(file->Target(), kObjectRoot, file->TakeDescriptor()) != 0) {
        return OAMERR_FILE_WRITE_ERROR;
    }
    oam::LastFailure result;
    result.Note(Save(writer));
    if ((sync ? writer.CloseSynced() : writer.Close()) != 0) result.Note(OAMERR_FILE_WRITE_ERROR);
    return result.Get();
}

oam_result KOR_CMObject::Save(CXmlExport& exporter) noexcept {
    // Kept: the directory is the "Name" keyword while reading expects the object's own name; a
    // commit makes them equal.
    char directory[oam::kNameSize];
    const bool named = DbGetKeyword("Name", directory, sizeof directory) == OAM_SUCCESS;
    const char* name = named ? directory : Name();
    bool written = exporter.BegDir(name) == 0;
    if (!written) return OAMERR_FILE_WRITE_ERROR;
    for (int i = 0; written && i < keywords_.Count(); ++i) {
        const CKeyword* keyword = keywords_.At(i);
        written = exporter.SetNextKeyword(keyword->Name(), keyword->Value()) == 0;
    }
    written = exporter.EndDir(name) == 0 && written;
    return written ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
}

bool KOR_CMObject::HasFile() const noexcept {
    DataFilePath path;
    struct stat status;
    return BuildPath(&path) == OAM_SUCCESS && lstat(path.text, &status) == 0;
}

oam_result KOR_CMObject::RemoveFile() noexcept {
    DataFilePath path;
    if (auto failed = BuildPath(&path)) return failed;
    return remove(path.text) == 0 ? OAM_SUCCESS : OAMERR_NOT_FOUND;
}
