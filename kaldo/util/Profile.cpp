#include "kaldo/util/Profile.h"

#include "kaldo/core/Host.h"
#include "kaldo/util/FileAccess.h"
#include "kxprofile.h"

#include <stdexcept>

namespace kaldo {

namespace {

QString qkey(const std::wstring& section, const std::wstring& key)
{
    return QString::fromStdWString(section) + QLatin1Char('/') + QString::fromStdWString(key);
}

}  // namespace

Profile::Profile(const std::filesystem::path& path) : path_(path)
{
    // Read whole once through the checked path, so that neither a FIFO nor a
    // device reaches the settings' own reading.
    std::error_code ec;
    if (std::filesystem::exists(path_, ec))
        readFile(path_);
    settings_ = std::make_unique<QSettings>(QString::fromStdString(path_.string()),
                                            QSettings::IniFormat);
    if (settings_->status() == QSettings::FormatError)
        throw std::runtime_error("profile " + path_.string() + " is not a valid INI file");
}

QVariant Profile::read(const std::wstring& section, const std::wstring& key) const
{
    return settings_->value(qkey(section, key));
}

std::optional<int> Profile::getInt(const std::wstring& section, const std::wstring& key) const
{
    bool ok = false;
    const int value = read(section, key).toInt(&ok);
    return ok ? std::optional<int>(value) : std::nullopt;
}

std::optional<std::wstring> Profile::getString(const std::wstring& section,
                                               const std::wstring& key) const
{
    const QVariant value = read(section, key);
    if (!value.isValid())
        return std::nullopt;
    return value.toString().toStdWString();
}

std::optional<std::vector<unsigned char>> Profile::getBinary(const std::wstring& section,
                                                             const std::wstring& key) const
{
    const QVariant value = read(section, key);
    if (!value.isValid())
        return std::nullopt;
    const QByteArray bytes = value.toByteArray();
    return std::vector<unsigned char>(bytes.begin(), bytes.end());
}

bool Profile::write(const std::wstring& section, const std::wstring& key, const QVariant& value)
{
    std::error_code ec;
    if (path_.has_parent_path())
        std::filesystem::create_directories(path_.parent_path(), ec);
    settings_->setValue(qkey(section, key), value);
    settings_->sync();
    return settings_->status() == QSettings::NoError;
}

bool Profile::setInt(const std::wstring& section, const std::wstring& key, int value)
{
    return write(section, key, value);
}

bool Profile::setString(const std::wstring& section, const std::wstring& key,
                        const std::wstring& value)
{
    return write(section, key, QString::fromStdWString(value));
}

bool Profile::setBinary(const std::wstring& section, const std::wstring& key,
                        const std::vector<unsigned char>& value)
{
    return write(section, key,
                 QByteArray(reinterpret_cast<const char*>(value.data()),
                            static_cast<qsizetype>(value.size())));
}

}  // namespace kaldo

int kxGetProfileInt(const wchar_t* section, const wchar_t* key, int defaultValue)
{
    const kaldo::Profile* profile = kaldo::host().profile;
    return profile ? profile->getInt(section, key).value_or(defaultValue) : defaultValue;
}

bool kxWriteProfileInt(const wchar_t* section, const wchar_t* key, int value)
{
    kaldo::Profile* profile = kaldo::host().profile;
    return profile && profile->setInt(section, key, value);
}

std::wstring kxGetProfileString(const wchar_t* section, const wchar_t* key,
                                const wchar_t* defaultValue)
{
    const kaldo::Profile* profile = kaldo::host().profile;
    const std::wstring fallback = defaultValue ? defaultValue : L"";
    return profile ? profile->getString(section, key).value_or(fallback) : fallback;
}

bool kxWriteProfileString(const wchar_t* section, const wchar_t* key, const wchar_t* value)
{
    kaldo::Profile* profile = kaldo::host().profile;
    return profile && profile->setString(section, key, value ? value : L"");
}

bool kxGetProfileBinary(const wchar_t* section, const wchar_t* key,
                        std::vector<unsigned char>& out)
{
    const kaldo::Profile* profile = kaldo::host().profile;
    if (!profile)
        return false;
    auto value = profile->getBinary(section, key);
    if (!value)
        return false;
    out = std::move(*value);
    return true;
}

bool kxWriteProfileBinary(const wchar_t* section, const wchar_t* key,
                          const std::vector<unsigned char>& value)
{
    kaldo::Profile* profile = kaldo::host().profile;
    return profile && profile->setBinary(section, key, value);
}
