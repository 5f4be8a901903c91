// The host's identity for modules: product pre-name and names, icon, and the
// loading of resource libraries.
#include "kaldo/core/Host.h"
#include "kaldo/rx/Runtime.h"

#include "kxhost.h"
#include "kxstring.h"

#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QPixmap>

#include <dlfcn.h>

#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <vector>

int GetKaldProductPreName(wchar_t* buf, int size)
{
    const kaldo::Runtime* runtime = kaldo::host().runtime;
    std::wstring preName = kaldo::Runtime::kDefaultPreName;
    if (runtime)
        preName = runtime->productPreName().value_or(L"");
    if (buf && size > 0) {
        const std::size_t n = std::min(preName.size(), static_cast<std::size_t>(size - 1));
        std::wmemcpy(buf, preName.data(), n);
        buf[n] = L'\0';
    }
    return preName.empty() ? 0 : 1;
}

void* LoadResourceDll(const wchar_t* name)
{
    namespace fs = std::filesystem;
    if (!name || !*name)
        return nullptr;
    std::vector<fs::path> folders;
    if (kaldo::Runtime* runtime = kaldo::host().runtime) {
        if (const KxRxModuleInfo* module = runtime->linker().moduleInEntry())
            folders.push_back(fs::path(module->path).parent_path());
        if (!runtime->modulesDir().empty())
            folders.push_back(runtime->modulesDir());
    }
    for (const fs::path& folder : folders) {
        const fs::path candidate = folder / name;
        std::error_code ec;
        if (!fs::is_regular_file(candidate, ec))
            continue;
        if (void* handle = dlopen(kxutToMultiByte(candidate.wstring()).c_str(), RTLD_NOW | RTLD_LOCAL))
            return handle;
    }
    return nullptr;
}

QIcon GetOemAppIcon()
{
    // Three parallel strokes on a dark tile: a multiline, the program's subject.
    QImage image(32, 32, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(0x1f, 0x3a, 0x5f));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0xf2, 0xf2, 0xf2), 2.5));
    for (int i = 0; i < 3; ++i)
        painter.drawLine(QPointF(5, 11 + 8 * i), QPointF(27, 5 + 8 * i));
    painter.end();
    return QIcon(QPixmap::fromImage(image));
}

const wchar_t* GetOemProductName()
{
    return L"KALDO";
}
