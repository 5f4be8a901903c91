#include "kaldo/dlg/ResourceFiles.h"

#include "kaldo/dlg/DialogLabel.h"

#include "kxhost.h"
#include "kxrxlibrary.h"
#include "kxuibutton.h"

#include <QDialog>
#include <QFile>
#include <QUiLoader>

#include <dlfcn.h>

namespace kaldo::dlg {

namespace {

// The properties of a template's dialog that name its caption's string id
// and let the user resize it.
constexpr const char* kCaptionIdProperty = "captionId";
constexpr const char* kResizableProperty = "resizable";

// Builds a template's widgets; its labels are dialog labels.
class TemplateLoader : public QUiLoader {
public:
    QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override
    {
        if (className != QLatin1String("QLabel"))
            return QUiLoader::createWidget(className, parent, name);
        auto* label = new DialogLabel(parent);
        label->setObjectName(name);
        return label;
    }
};

}  // namespace

QString resourceFile(const QString& relative)
{
    void* library = kxrxResourceHandle();
    if (!library)
        return {};
    const auto root = reinterpret_cast<KxResRootFn>(dlsym(library, kxResRootSymbol));
    if (!root)
        return {};
    return QString::fromUtf8(root()) + QLatin1Char('/') + relative;
}

std::unique_ptr<QDialog> loadDialogTemplate(unsigned templateId, QWidget* parent)
{
    const QString path = resourceFile(QStringLiteral("dialogs/%1.ui").arg(templateId));
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly))
        return nullptr;
    TemplateLoader loader;
    QWidget* loaded = loader.load(&file, parent);
    auto* dialog = qobject_cast<QDialog*>(loaded);
    if (!dialog) {
        delete loaded;
        return nullptr;
    }
    if (const QVariant id = dialog->property(kCaptionIdProperty); id.isValid()) {
        const std::wstring designed = dialog->windowTitle().toStdWString();
        dialog->setWindowTitle(QString::fromWCharArray(kxmdKxResourceString(id.toUInt(), designed.c_str())));
    }
    // A dialog keeps the size it was designed with unless its template
    // lets the user resize it.
    if (!dialog->property(kResizableProperty).toBool())
        dialog->setFixedSize(dialog->size());
    return std::unique_ptr<QDialog>(dialog);
}

}  // namespace kaldo::dlg

QImage kxLoadResourceBitmap(const wchar_t* name)
{
    if (!name || !*name)
        return {};
    const QString path = kaldo::dlg::resourceFile(QStringLiteral("bitmaps/%1.png").arg(QString::fromWCharArray(name)));
    return path.isEmpty() ? QImage() : QImage(path);
}
