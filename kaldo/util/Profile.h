// The user's settings as an INI file (sections such as "Settings" and
// "ListCtrls"). Values are written through at once, so a crash loses nothing.
#pragma once

#include <QSettings>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kaldo {

class Profile {
public:
    // Opens the profile at path. A file that does not exist yet is created on
    // the first write. Throws std::runtime_error with a readable message when
    // the file exists but cannot be read whole (FileError: a folder, device or
    // FIFO is refused without waiting) or is not an INI file.
    explicit Profile(const std::filesystem::path& path);

    const std::filesystem::path& path() const { return path_; }

    std::optional<int> getInt(const std::wstring& section, const std::wstring& key) const;
    std::optional<std::wstring> getString(const std::wstring& section, const std::wstring& key) const;
    std::optional<std::vector<unsigned char>> getBinary(const std::wstring& section,
                                                        const std::wstring& key) const;

    // Each write returns false when the file cannot be written.
    bool setInt(const std::wstring& section, const std::wstring& key, int value);
    bool setString(const std::wstring& section, const std::wstring& key, const std::wstring& value);
    bool setBinary(const std::wstring& section, const std::wstring& key,
                   const std::vector<unsigned char>& value);

private:
    bool write(const std::wstring& section, const std::wstring& key, const QVariant& value);
    QVariant read(const std::wstring& section, const std::wstring& key) const;

    std::filesystem::path path_;
    std::unique_ptr<QSettings> settings_;
};

}  // namespace kaldo
