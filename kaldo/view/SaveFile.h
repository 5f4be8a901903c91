// Atomic writing of an output file: written beside it, flushed, renamed.
#pragma once

#include <QByteArray>

#include <filesystem>
#include <functional>
#include <string>

class QIODevice;

namespace kaldo::view {

// write fills the device and returns false (with a reason) when it fails.
// Returns why the file could not be written, empty on success.
std::string saveAtomically(const std::filesystem::path& file,
                           const std::function<bool(QIODevice&, std::string& reason)>& write);

}  // namespace kaldo::view
