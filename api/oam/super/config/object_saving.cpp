#include "object_saving.h"

namespace {

// Of scopes that lie in each other; under the manager lock, like every save.
constinit int together = 0;

}  // namespace

ObjectSaving::Together::Together() noexcept { ++together; }

ObjectSaving::Together::~Together() { --together; }

ObjectSaving::~ObjectSaving() { file_.GiveUp(); }

// The file of an object that is being created is synced when it gets its name.
bool ObjectSaving::IsSynced() const noexcept { return together == 0 && !object_->IsBeingCreated(); }

void ObjectSaving::WriteAhead() noexcept {
    written_ = object_->BuildPath(&path_);
    isWritten_ = written_ != OAM_SUCCESS;
    if (isWritten_) return;
    written_ = file_.Begin(path_.text);
    isWritten_ = written_ != OAM_SUCCESS || file_.IsBeside();
    if (written_ != OAM_SUCCESS || !file_.IsBeside()) return;
    written_ = Write();
    if (written_ == OAM_SUCCESS && IsSynced()) file_.OpenPlace();
}

oam_result ObjectSaving::Write() noexcept {
    return object_->WriteFile(&file_, file_.IsBeside() && IsSynced());
}

oam_result ObjectSaving::PutInPlace() noexcept {
    if (!isWritten_) {
        if (*path_.text == '\0') WriteAhead();
        if (!isWritten_) written_ = Write();
    }
    return file_.PutInPlace(written_);
}

oam_result ObjectSaving::Sync() noexcept {
    return !IsSynced() || file_.SyncPlace() ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
}
