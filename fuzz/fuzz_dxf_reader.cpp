// Feeds arbitrary bytes to the drawing reader, and what it reads to the
// writer: no crash, no sanitizer report, only DxfError for bad input. What
// the reader takes must save, and what it saves must read again and save
// to the same bytes; read with its sections' records read ahead on a second
// thread it gives the same error or the same bytes (saved with the entities
// in chunks of two made on two threads, beside one thread); anything else
// stops the run.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>

#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/DxfFile.h"
#include "kaldo/dxf/GroupReader.h"
#include "kxdbdatabase.h"

namespace {

// The drawing as the writer saves it.
std::string saved(kaldo::dxf::DxfDrawing& drawing, kaldo::dxf::EntityChunks chunks = {})
{
    const int fd = memfd_create("fuzz-dxf", MFD_CLOEXEC);
    if (fd < 0)
        std::abort();
    kaldo::dxf::writeDxf(fd, *drawing.database, drawing.kept, {}, chunks);
    std::string text(std::size_t(lseek(fd, 0, SEEK_END)), '\0');
    if (pread(fd, text.data(), text.size(), 0) != ssize_t(text.size()))
        std::abort();
    close(fd);
    return text;
}

}  // namespace

namespace {

// Reads text, every section's records read ahead on a second thread from
// readAheadFrom bytes left on, that thread taking every entity apart; the
// error's message when it is refused.
std::string read(std::string_view text, std::uint64_t readAheadFrom, kaldo::dxf::DxfDrawing& drawing)
{
    try {
        kaldo::dxf::GroupReader reader(text);
        reader.setReadAheadFrom(readAheadFrom);
        reader.setWorkAhead(kaldo::dxf::GroupReader::WorkAhead::Always);
        drawing = kaldo::dxf::readDxf(reader);
    } catch (const kaldo::dxf::DxfError& e) {
        return e.what();
    }
    return {};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    kaldo::dxf::DxfDrawing drawing;
    kaldo::dxf::DxfDrawing readAhead;
    const std::string error = read(text, std::numeric_limits<std::uint64_t>::max(), drawing);
    if (read(text, 0, readAhead) != error)
        std::abort();
    if (!error.empty())
        return 0;
    try {
        const std::string first = saved(drawing, {4096, true});
        if (saved(readAhead, {2, false}) != first)
            std::abort();
        kaldo::dxf::GroupReader again(first);
        kaldo::dxf::DxfDrawing reopened = kaldo::dxf::readDxf(again);
        if (!reopened.repairs.empty() || saved(reopened) != first)
            std::abort();
    } catch (const kaldo::dxf::DxfError&) {
        std::abort();
    }
    return 0;
}
