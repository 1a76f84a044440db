// Small files of the kernel's tree, read and written with care: whatever lies there may be missing,
// huge, binary or of another kind than expected.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace oam::pci {

// An attribute is at most one page.
inline constexpr std::size_t kLongestAttribute = 4096;

// Without white space at its ends. Nothing when it is no regular file, cannot be read, is too long
// for an attribute or holds control characters.
std::optional<std::string> readAttribute(const std::string& path);

// Gives an order to the kernel: the text in one write to a file that is there already.
bool writeAttribute(const std::string& path, const std::string& text);

// The last part of what a symbolic link points to; empty when there is no such link.
std::string linkedName(const std::string& path);

bool isDirectory(const std::string& path);

// The names in a directory, sorted, without hidden ones; at most `most`, and none when it cannot be
// read.
std::optional<std::vector<std::string>> listNames(const std::string& path, std::size_t most);

}  // namespace oam::pci
