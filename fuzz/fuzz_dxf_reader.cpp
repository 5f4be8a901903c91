// Feeds arbitrary bytes to the drawing reader, and what it reads to the
// writer: no crash, no sanitizer report, only DxfError for bad input.
#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/DxfFile.h"
#include "kaldo/dxf/GroupReader.h"
#include "kxdbdatabase.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const int nowhere = open("/dev/null", O_WRONLY);
    try {
        kaldo::dxf::GroupReader reader(std::string_view(reinterpret_cast<const char*>(data), size));
        kaldo::dxf::DxfDrawing drawing = kaldo::dxf::readDxf(reader);
        kaldo::dxf::writeDxf(nowhere, *drawing.database, drawing.kept);
    } catch (const kaldo::dxf::DxfError&) {
    }
    return 0;
}
