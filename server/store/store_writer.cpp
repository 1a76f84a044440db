#include "store/store_writer.h"

#include <exception>
#include <utility>

namespace oam::server {

BookConnection::BookConnection(const std::string& path,
                               std::function<void(const std::string&)> complain)
    : path_(path), complain_(std::move(complain)) {}

Database& BookConnection::Open() {
    if (database_ == nullptr) {
        std::string setAside;
        database_ = std::make_unique<Database>(path_, &setAside);
        ++openings_;
        TellSetAside(setAside);
    }
    return *database_;
}

void BookConnection::Drop() { database_.reset(); }

void BookConnection::SetAsideIfSpoiled() {
    Drop();
    TellSetAside(Database::SetAsideIfSpoiled(path_));
}

void BookConnection::TellSetAside(const std::string& name) {
    if (!name.empty())
        complain_('"' + path_ + "\" was spoiled; it lies as \"" + name +
                  "\" now, and a new book is begun");
}

StoreWriter::StoreWriter(Bell& bell, const std::string& path, std::vector<StoreJob*> jobs,
                         Complain complain, std::chrono::milliseconds pause)
    : bell_(bell),
      path_(path),
      jobs_(std::move(jobs)),
      complain_(std::move(complain)),
      pause_(pause),
      book_(path, complain_),
      thread_([this] { Work(); }) {}

StoreWriter::~StoreWriter() {
    bell_.End();
    thread_.join();
}

void StoreWriter::Work() {
    for (bool isEnding = false;;) {
        const Round round = WriteOnce();
        if (round == Round::kMore) continue;
        if (isEnding) return;
        if (round == Round::kFailed)
            isEnding = bell_.AwaitEnd(pause_);
        else
            isEnding = !bell_.AwaitRing();
    }
}

// A job that fails does not keep the others from theirs: not all of them need the book.
StoreWriter::Round StoreWriter::WriteOnce() {
    bool isMore = false;
    std::string failure;
    for (StoreJob* job : jobs_) {
        try {
            try {
                isMore |= job->Write(book_);
            } catch (const SpoiledStore&) {
                book_.SetAsideIfSpoiled();
                isMore |= job->Write(book_);
            }
        } catch (const std::exception& error) {
            book_.Drop();
            failure = error.what();
        }
    }
    Note(failure);
    if (!failure.empty()) return Round::kFailed;
    return isMore ? Round::kMore : Round::kDone;
}

void StoreWriter::Note(const std::string& failure) {
    const bool isFailing = !failure.empty();
    if (isFailing == isFailing_) return;
    isFailing_ = isFailing;
    complain_(isFailing ? "cannot write the book, it is tried again: " + failure
                        : "the book can be written again: \"" + path_ + '"');
}

}  // namespace oam::server
