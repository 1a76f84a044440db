// The whole configuration out to a file and in from one, judged on the way.
#pragma once

#include <string>

#include "transfer_file.h"

namespace oam {

// Writes the file and judges what was written: its findings are what an import would refuse. What
// cannot be written is a Failure.
TransferFile ExportConfiguration(const std::string& file);

// As an import of the running service would: with the products that its plug-ins serve.
TransferFile JudgeImport(const std::string& file);

// Replaces the configuration by the file's. A refusal is a Failure; judge the file first.
void ImportConfiguration(const std::string& file);

}  // namespace oam
