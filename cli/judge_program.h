// oam-plugin-check, run as a program: a file that it judges may crash, hang or end its process.
#pragma once

#include <string>

namespace oam {

struct JudgeReport {
    bool isPassed;
    std::string text;  // for people, or one JSON object
};

// A program that is not installed, or that cannot judge the file, is a Failure; its own complaint
// has then gone to standard error.
JudgeReport JudgeFile(const std::string& path, bool asJson);

}  // namespace oam
