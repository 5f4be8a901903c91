// Dialog templates and images of the current resource library: its Qt
// resources, found through the root the library exports.
#pragma once

#include <QString>

#include <memory>

class QDialog;
class QWidget;

namespace kaldo::dlg {

// The resource path of a file of the current resource library (e.g.
// "dialogs/5758.ui"); empty when there is no current library or it holds no
// Qt resources.
QString resourceFile(const QString& relative);

// The dialog of template id, its caption taken from the string table when
// the template names a caption id; of fixed size unless the template makes
// it resizable; null when there is no such template.
std::unique_ptr<QDialog> loadDialogTemplate(unsigned templateId, QWidget* parent);

}  // namespace kaldo::dlg
