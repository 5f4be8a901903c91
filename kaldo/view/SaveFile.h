// Writing an output file (a picture) whole: the bytes go as they are made
// into the temporary file of the host's checked, atomic file replacing,
// which then takes the target's place, so that memory does not grow with
// the file.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

class QByteArray;
class QImage;
class QIODevice;

namespace kaldo::view {

// write fills the device and returns false (with a reason) when it fails.
// Returns why the file could not be written, empty on success.
std::string saveAtomically(const std::filesystem::path& file,
                           const std::function<bool(QIODevice&, std::string& reason)>& write);

// Writes image in format ("png", "jpg", ...; quality -1 for the format's
// default) the same way.
std::string saveImage(const std::filesystem::path& file, const QImage& image, const QByteArray& format,
                      int quality = -1);

}  // namespace kaldo::view
