#include "mlnfile/MlnLineSource.h"

#include <cstring>

namespace kdml {

namespace {

// At most this many characters are taken by one read.
constexpr std::size_t kReadLimit = kMlnLineBufferSize - 2;

}  // namespace

MlnLineSource::MlnLineSource(const wchar_t* path) : file_(path)
{
    // The first conversion loads the locale's converter; doing it here keeps
    // the reads themselves free of that.
    std::mbstate_t state{};
    wchar_t c = 0;
    std::mbrtowc(&c, "a", 1, &state);
    line_[0] = L'\0';
}

bool MlnLineSource::refill()
{
    if (!file_.isOpen() || failed_)
        return false;
    std::memmove(bytes_, bytes_ + pos_, size_ - pos_);
    size_ -= pos_;
    pos_ = 0;
    const long got = file_.read(bytes_ + size_, kByteBufferSize - size_);
    failed_ = got < 0;
    if (got <= 0)
        return false;
    size_ += static_cast<std::size_t>(got);
    return true;
}

bool MlnLineSource::nextCharacter(wchar_t& c)
{
    if (pos_ == size_ && !refill())
        return false;
    const auto byte = static_cast<unsigned char>(bytes_[pos_]);
    if (byte == '\r') {
        if (pos_ + 1 == size_)
            refill();
        if (pos_ + 1 < size_ && bytes_[pos_ + 1] == '\n') {
            pos_ += 2;
            c = L'\n';
            return true;
        }
        ++pos_;
        c = L'\r';
        return true;
    }
    if (byte < 0x80) {
        ++pos_;
        c = static_cast<wchar_t>(byte);
        return true;
    }
    for (;;) {
        std::mbstate_t state{};
        const std::size_t used = std::mbrtowc(&c, bytes_ + pos_, size_ - pos_, &state);
        if (used == static_cast<std::size_t>(-2) && size_ - pos_ < kByteBufferSize && refill())
            continue;
        if (used == static_cast<std::size_t>(-1) || used == static_cast<std::size_t>(-2)) {
            ++pos_;
            c = L'?';
            return true;
        }
        pos_ += used == 0 ? 1 : used;
        return true;
    }
}

bool MlnLineSource::next()
{
    length_ = 0;
    bool readAny = false;
    bool lineFeed = false;
    while (length_ < kReadLimit && !lineFeed) {
        // Plain ASCII without CR goes straight across.
        while (pos_ < size_ && length_ < kReadLimit) {
            const auto byte = static_cast<unsigned char>(bytes_[pos_]);
            if (byte >= 0x80 || byte == '\r')
                break;
            ++pos_;
            line_[length_++] = static_cast<wchar_t>(byte);
            readAny = true;
            if (byte == '\n') {
                lineFeed = true;
                break;
            }
        }
        if (lineFeed || length_ == kReadLimit)
            break;
        wchar_t c = 0;
        if (!nextCharacter(c)) {
            atEnd_ = !failed_;
            break;
        }
        readAny = true;
        line_[length_++] = c;
        lineFeed = c == L'\n';
    }
    if (!readAny)
        return false;
    std::size_t visible = 0;
    while (visible < length_ && line_[visible] != L'\0')
        ++visible;
    if (visible == length_ && lineFeed)
        --visible;
    line_[visible] = L'\0';
    length_ = visible;
    return true;
}

}  // namespace kdml
