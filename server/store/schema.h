// The tables of the book, and how an older file gets them.
//
// The file's user_version counts the steps that it has gone. A step that has been released is never
// changed: what comes new is a step more, at the end.
#pragma once

#include <string>

namespace oam::server {

class Database;

// StoreError for a file that a newer daemon wrote, and for another program's database. Changes
// nothing.
void checkSchema(Database& database, const std::string& path);

// All steps that the file lacks, or none.
void bringUpToDate(Database& database);

}  // namespace oam::server
