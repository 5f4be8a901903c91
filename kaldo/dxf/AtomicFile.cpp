#include "kaldo/dxf/AtomicFile.h"

#include "kaldo/dxf/DxfError.h"
#include "kaldo/util/FileAccess.h"
#include "kaldo/util/FileWriting.h"

namespace kaldo::dxf {

void writeFileAtomically(const std::filesystem::path& target, const std::function<void(int fd)>& write,
                         bool replaceReadOnly)
{
    try {
        replaceFile(
            target,
            [&](int fd) {
                try {
                    write(fd);
                } catch (const DxfError& e) {
                    throw FileError(e.what());
                }
            },
            replaceReadOnly);
    } catch (const FileError& e) {
        throw DxfError(0, e.what());
    }
}

}  // namespace kaldo::dxf
