#include "styledlg/StylePreviewData.h"

#include "kxdbmlstyle.h"
#include "mlnfile/StyleElementSetters.h"

namespace kdml {

void fillPreviewRecord(StylePreviewData& record, const KxDbMlineStyle& style)
{
    record.startAngle = style.startAngle();
    record.endAngle = style.endAngle();
    record.elements.clear();
    for (int i = 0; i < style.numElements(); ++i) {
        StylePreviewElement element;
        style.getElementAt(i, element.offset, element.color, element.linetype);
        record.elements.push_back(element);
    }
    record.flags = static_cast<std::uint32_t>(styleFlags(style));
}

}  // namespace kdml
