#include "kaldo/util/FileStreamBuffer.h"

#include <cerrno>
#include <cstring>

namespace kaldo {

FileStreamBuffer::FileStreamBuffer(const std::filesystem::path& path) : path_(path), fd_(openForReading(path)) {}

FileStreamBuffer::int_type FileStreamBuffer::underflow()
{
    if (gptr() < egptr())
        return traits_type::to_int_type(*gptr());
    if (!problem_.empty())
        return traits_type::eof();
    const long got = readSome(fd_.get(), bytes_.data(), bytes_.size());
    if (got < 0)
        problem_ = fileMessage("read", path_, std::strerror(errno));
    if (got <= 0)
        return traits_type::eof();
    setg(bytes_.data(), bytes_.data(), bytes_.data() + got);
    return traits_type::to_int_type(*gptr());
}

}  // namespace kaldo
