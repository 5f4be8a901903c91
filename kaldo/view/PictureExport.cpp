#include "kaldo/view/PictureExport.h"

#include "kaldo/view/PngExport.h"
#include "kaldo/view/SvgExport.h"

#include <QString>

namespace kaldo::view {

std::string exportPicture(const KxDbDatabase& db, const std::filesystem::path& file, const PictureOptions& options,
                          RenderNotes* notes, const TextStyleFonts& styles)
{
    const QString extension = QString::fromStdString(file.extension().string()).toLower();
    if (extension != ".svg" && extension != ".png")
        return "cannot write '" + file.string() + "': a picture is a .svg or a .png file.";
    try {
        const Scene scene = renderDrawing(db, notes, PointBudget::kPicture, styles);
        return extension == ".svg" ? writeSvg(scene, file, options) : writePng(scene, file, options);
    } catch (...) {
        return "cannot draw '" + file.string() + "': " + failureReason(std::current_exception()) + ".";
    }
}

}  // namespace kaldo::view
